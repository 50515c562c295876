/* BOOLEAN. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_boolean(ASN1CTXT* pctxt, ASN1BOOL* object_p, int tagging, int length) {
  ASN1BUFFER& buf = pctxt->buffer;
  if (tagging) {
    /* A one-octet value needs no long-form length: the octet after the identifier is taken
     * as the length as it stands, so 0x81 0x01 is a length of 129, not 1. */
    ASN1UINT idx = buf.byteIndex;
    if (idx >= buf.size || streamEnded(pctxt)) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
    if (buf.data[idx] != ASN_ID_BOOL) {
      ASN1TagType parsed;
      if (readTag(buf.data, buf.size, &idx, &parsed) < 0) parsed = tagOfOctet(buf.data[idx]);
      addTagParms(pctxt, ASN_ID_BOOL, parsed);
      return LOG_RTERR(pctxt, ASN_E_IDNOTFOU);
    }
    if (buf.size - idx < 2) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
    length = buf.data[idx + 1];
    buf.byteIndex = idx + 2;
    pctxt->flags &= (ASN1USINT)~ASN1CONSTAG;
  }
  if (length != 1) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  if (buf.byteIndex >= buf.size) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  /* Kept as it stands, not folded to 1, so a re-encoder can see what was sent. */
  *object_p = buf.data[buf.byteIndex++];
  return 0;
}

QN_END_C
