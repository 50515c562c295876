#include "message_codec.h"

#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include <limits.h>

namespace quillon_tool {

namespace {

const char kModule[] = "tools/quillon/message_codec";

}  // namespace

MessageCodec::MessageCodec(const TypeEntry& type) : type_(type), ctxt_() {
  rtInitContext(&ctxt_, nullptr);
}

MessageCodec::~MessageCodec() { rtFreeContext(&ctxt_); }

int MessageCodec::decode(const uint8_t* data, size_t length) {
  // The decoder takes a length below 1 for a stream of unknown size, so an empty message
  // must not reach it.
  if (length == 0) return rtErrSetData(&ctxt_.errInfo, ASN_E_ENDOFBUF, kModule, __LINE__);
  if (length > INT_MAX) return rtErrSetData(&ctxt_.errInfo, ASN_E_TOOBIG, kModule, __LINE__);
  int stat = xd_setp(&ctxt_, data, static_cast<int>(length), nullptr, nullptr);
  if (stat < 0) return stat;
  // The value comes zeroed from the context's heap, as the information objects make theirs,
  // and goes with the heap.
  void* value = rtMemHeapAllocZ(&ctxt_.memHeap, type_.size);
  if (value == nullptr) return rtErrSetData(&ctxt_.errInfo, ASN_E_NOMEM, kModule, __LINE__);
  stat = type_.decode(&ctxt_, value);
  if (stat < 0) return stat;
  consumed_ = ctxt_.buffer.byteIndex;
  if (consumed_ != length) return rtErrSetData(&ctxt_.errInfo, ASN_E_INVLEN, kModule, __LINE__);
  value_ = value;
  return 0;
}

int MessageCodec::encode(std::vector<uint8_t>& der) {
  if (value_ == nullptr) return rtErrSetData(&ctxt_.errInfo, ASN_E_NOTINIT, kModule, __LINE__);
  xe_setp(&ctxt_, nullptr, 0);
  int len = type_.encode(&ctxt_, value_);
  if (len < 0) return len;
  const ASN1OCTET* start = xe_getp(&ctxt_);
  der.assign(start, start + len);
  xe_free(&ctxt_);
  return len;
}

std::string MessageCodec::errorReport() {
  if (ctxt_.errInfo.status == 0 && ctxt_.errInfo.stkx == 0) return std::string();
  const char* text = rtErrGetText(&ctxt_);
  std::string report = text != nullptr ? text : "(no memory for the error report)\n";
  rtErrReset(&ctxt_.errInfo);
  return report;
}

}  // namespace quillon_tool
