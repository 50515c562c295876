/* Character strings: 8-bit texts, and BMP and universal strings of 16 and 32-bit
 * characters. */
#include <string.h>

#include "xe_common.h"

namespace {

/* Each character in sizeof(Char) octets, most significant first. */
template <typename Char>
int putWideChars(ASN1CTXT* pctxt, const Char* chars, ASN1UINT nchars) {
  if (nchars == 0) return 0;
  if (chars == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  if (nchars > 0x7FFFFFFFu / sizeof(Char)) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  ASN1UINT n = nchars * (ASN1UINT)sizeof(Char);
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  ASN1OCTET* p = xeClaim(pctxt, n);
  for (ASN1UINT i = 0; i < nchars; ++i, p += sizeof(Char)) {
    xeStoreIntOctets(p, sizeof(Char), chars[i]);
  }
  return (int)n;
}

}  // namespace

int xe_charstr(ASN1CTXT* pctxt, const char* object_p, int tagging, ASN1TagType tag) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  size_t n = strlen(object_p);
  if (n > 0x7FFFFFFFu) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  int len = xe_memcpy(pctxt, (const ASN1OCTET*)object_p, (ASN1UINT)n);
  return xeFinishPrimitive(pctxt, len, tagging, tag);
}

int xe_16BitCharStr(ASN1CTXT* pctxt, const Asn116BitCharString* object_p, int tagging,
                    ASN1TagType tag) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeFinishPrimitive(pctxt, putWideChars(pctxt, object_p->data, object_p->nchars),
                           tagging, tag);
}

int xe_32BitCharStr(ASN1CTXT* pctxt, const Asn132BitCharString* object_p, int tagging,
                    ASN1TagType tag) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeFinishPrimitive(pctxt, putWideChars(pctxt, object_p->data, object_p->nchars),
                           tagging, tag);
}
