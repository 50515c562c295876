/* Attaching a message to decode. */
#include "xd_common.h"

QN_BEGIN_C

int xd_setp(ASN1CTXT* pctxt, const ASN1OCTET* msg, int msglen, ASN1TagType* tag_p,
            int* len_p) {
  if (!msg) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  /* The decoder never writes through the buffer; the context simply has one buffer type. */
  int stat = rtInitContextBuffer(pctxt, const_cast<ASN1OCTET*>(msg),
                                 msglen < 1 ? 0x7FFFFFFF : msglen);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  pctxt->flags &= (ASN1USINT) ~(ASN1INDEFLEN | ASN1LASTEOC);

  ASN1TagType tag;
  int len;
  stat = xd_tag_len(pctxt, &tag, &len, XM_ADVANCE);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  if (len == ASN_K_INDEFLEN)
    pctxt->flags |= ASN1INDEFLEN;
  else
    pctxt->buffer.size = pctxt->buffer.byteIndex + (ASN1UINT)len;
  /* The decoder proper reads the outer header again. */
  pctxt->buffer.byteIndex = 0;
  if (tag_p) *tag_p = tag;
  if (len_p) *len_p = len;
  return 0;
}

QN_END_C
