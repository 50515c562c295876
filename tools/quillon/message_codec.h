// One message decoded as one type in a context of its own, and its DER re-encoding: what
// "quillon decode" and "quillon identify" do for each message, and what the corpus tests do
// for each corpus file.
#ifndef QUILLON_TOOL_MESSAGE_CODEC_H
#define QUILLON_TOOL_MESSAGE_CODEC_H

#include <quillon/asn1type.h>

#include <stdint.h>

#include <string>
#include <vector>

#include "type_registry.h"

namespace quillon_tool {

class MessageCodec {
 public:
  explicit MessageCodec(const TypeEntry& type);
  ~MessageCodec();
  MessageCodec(const MessageCodec&) = delete;
  MessageCodec& operator=(const MessageCodec&) = delete;

  // Decodes the whole of data (length octets; the library reads them in place, so they must
  // outlive the value). 0, or the library's negative status with its error record kept for
  // errorReport(). Octets left over after the message are an error too (-5), since a file
  // that holds more than the message is not that message.
  int decode(const uint8_t* data, size_t length);
  // Octets the decoder read, after a decode that got as far as the end of the message.
  size_t consumed() const { return consumed_; }
  // The decoded value (null before a successful decode).
  void* value() const { return value_; }
  // Re-encodes the decoded value into der: its length, or the library's negative status.
  int encode(std::vector<uint8_t>& der);
  // The library's error report of the last failure ("ASN.1 ERROR: Status ..." and the trace),
  // consuming the error record; empty when nothing is recorded.
  std::string errorReport();
  ASN1CTXT* context() { return &ctxt_; }
  const TypeEntry& type() const { return type_; }

 private:
  const TypeEntry& type_;
  ASN1CTXT ctxt_;
  void* value_ = nullptr;
  size_t consumed_ = 0;
};

}  // namespace quillon_tool

#endif
