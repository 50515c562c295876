/* Matching an expected tag. */
#include "xd_common.h"

using namespace qn::xd;

namespace {

bool sameTag(ASN1TagType a, ASN1TagType b) { return ((a ^ b) & ~TM_CONS) == 0; }

/* A long length, or a mismatch to report; kept out of xd_match1 so that its common case pays
 * for no register saves. */
__attribute__((noinline)) int matchOneOctetSlow(ASN1CTXT* pctxt, ASN1OCTET tag, int* len_p) {
  ASN1BUFFER& buf = pctxt->buffer;
  ASN1UINT idx = buf.byteIndex;
  if (idx < buf.size && ((buf.data[idx] ^ tag) & ~0x20) == 0) {
    int len;
    int stat = xd_Tag1AndLen(pctxt, &len);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    if (len_p) *len_p = len;
    return 0;
  }
  ASN1TagType parsed = 0;
  if (idx < buf.size && readTag(buf.data, buf.size, &idx, &parsed) < 0)
    parsed = tagOfOctet(buf.data[buf.byteIndex]);
  addTagParms(pctxt, tagOfOctet(tag), parsed);
  return LOG_RTERR(pctxt, ASN_E_IDNOTFOU);
}

}  // namespace

QN_BEGIN_C

int xd_match(ASN1CTXT* pctxt, ASN1TagType tag, int* len_p, ASN1OCTET flags) {
  ASN1UINT idx = pctxt->buffer.byteIndex;
  ASN1TagType parsed = 0;
  int len = 0;
  int stat = 0;
  if (flags & XM_ENTER) stat = readHeader(pctxt, &idx, &parsed, &len);
  while (stat == 0) {
    ASN1UINT next = idx;
    stat = readHeader(pctxt, &next, &parsed, &len);
    if (stat < 0) break;
    if (sameTag(parsed, tag)) {
      if (len_p) *len_p = len;
      if (flags & XM_ADVANCE) {
        pctxt->buffer.byteIndex = next;
        setConstructedFlag(pctxt, parsed & TM_CONS);
      }
      return 0;
    }
    if (!(flags & XM_SKIP)) break;
    /* A search goes into constructed values: the tag may sit anywhere below. */
    idx = (parsed & TM_CONS) ? next : next + (ASN1UINT)len;
  }
  /* Running out of data while looking is a mismatch: for an optional component it means the
   * component is absent, which callers tell by -3. */
  if (stat < 0 && stat != ASN_E_ENDOFBUF) return LOG_RTERR(pctxt, stat);
  addTagParms(pctxt, tag, parsed);
  return LOG_RTERR(pctxt, ASN_E_IDNOTFOU);
}

int xd_match1(ASN1CTXT* pctxt, ASN1OCTET tag, int* len_p) {
  ASN1BUFFER& buf = pctxt->buffer;
  const ASN1UINT idx = buf.byteIndex;
  /* The usual header, matched in place: the expected octet and a short length that fits. */
  if (idx < buf.size && buf.size - idx >= 2 && ((buf.data[idx] ^ tag) & ~0x20) == 0 &&
      buf.data[idx + 1] < 0x80 && buf.data[idx + 1] <= buf.size - idx - 2 &&
      !streamEnded(pctxt)) {
    if (len_p) *len_p = buf.data[idx + 1];
    buf.byteIndex = idx + 2;
    setConstructedFlag(pctxt, buf.data[idx] & 0x20);
    return 0;
  }
  return matchOneOctetSlow(pctxt, tag, len_p);
}

QN_END_C
