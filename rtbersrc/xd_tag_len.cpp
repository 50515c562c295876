/* Identifier and length octets: the decoder's hottest path. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_tag_len(ASN1CTXT* pctxt, ASN1TagType* tag_p, int* len_p, ASN1OCTET flags) {
  ASN1UINT idx = pctxt->buffer.byteIndex;
  ASN1TagType tag;
  int len;
  int stat = readHeader(pctxt, &idx, &tag, &len);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  if (tag_p) *tag_p = tag;
  if (len_p) *len_p = len;
  if (flags & XM_ADVANCE) {
    pctxt->buffer.byteIndex = idx;
    setConstructedFlag(pctxt, tag & TM_CONS);
  }
  return 0;
}

int xd_Tag1AndLen(ASN1CTXT* pctxt, int* len_p) {
  ASN1BUFFER& buf = pctxt->buffer;
  ASN1UINT idx = buf.byteIndex;
  if (idx >= buf.size || streamEnded(pctxt)) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  ASN1OCTET identifier = buf.data[idx++];
  int len;
  if (idx < buf.size && buf.data[idx] < 0x80) {
    len = buf.data[idx++];
    if ((ASN1UINT)len > buf.size - idx) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  } else {
    int stat = readLength(buf.data, buf.size, &idx, &len);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    if (len == ASN_K_INDEFLEN && !(identifier & 0x20)) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  }
  buf.byteIndex = idx;
  setConstructedFlag(pctxt, identifier & 0x20);
  *len_p = len;
  return 0;
}

QN_END_C

namespace qn::xd {

int matchPrimitiveHeaderSlow(ASN1CTXT* pctxt, ASN1OCTET octet, int* len_p) {
  ASN1BUFFER& buf = pctxt->buffer;
  ASN1UINT idx = buf.byteIndex;
  if (idx >= buf.size || streamEnded(pctxt)) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  if (buf.data[idx] != octet) {
    ASN1TagType parsed;
    if (readTag(buf.data, buf.size, &idx, &parsed) < 0) parsed = tagOfOctet(buf.data[idx]);
    addTagParms(pctxt, tagOfOctet(octet), parsed);
    return LOG_RTERR(pctxt, ASN_E_IDNOTFOU);
  }
  ++idx;
  int len;
  int stat = readLength(buf.data, buf.size, &idx, &len);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  if (len == ASN_K_INDEFLEN) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  buf.byteIndex = idx;
  pctxt->flags &= (ASN1USINT)~ASN1CONSTAG;
  *len_p = len;
  return 0;
}

}  // namespace qn::xd
