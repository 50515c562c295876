/* Identifier and length octets. The header of a value is counted first and stored in one
 * claim, since it sits on every encoder's path. */
#include <limits.h>

#include "xe_common.h"

namespace {

const ASN1UINT kLongFormNumber = 31;

unsigned tagOctetCount(ASN1TagType tag) {
  ASN1UINT number = tag & TM_IDCODE_MASK;
  return number < kLongFormNumber ? 1 : 1 + xeBase128Count(number);
}

/* Class and constructed bit land in the top three bits of the first identifier octet. */
void storeTag(ASN1OCTET* p, unsigned n, ASN1TagType tag) {
  ASN1OCTET lead = (ASN1OCTET)((tag >> 29) << 5);
  ASN1UINT number = tag & TM_IDCODE_MASK;
  if (n == 1) {
    *p = (ASN1OCTET)(lead | number);
    return;
  }
  *p = (ASN1OCTET)(lead | kLongFormNumber);
  xeStoreBase128(p + 1, n - 1, number);
}

/* A definite length, or ASN_K_INDEFLEN. */
unsigned lengthOctetCount(int length) {
  if (length < 0x80) return 1; /* short form, and the lone 0x80 of the indefinite form */
  return 1 + (xeBitLength((ASN1UINT)length) + 7) / 8;
}

void storeLength(ASN1OCTET* p, unsigned n, int length) {
  if (length == ASN_K_INDEFLEN) {
    *p = 0x80;
    return;
  }
  if (n == 1) {
    *p = (ASN1OCTET)length;
    return;
  }
  *p = (ASN1OCTET)(0x80 | (n - 1));
  xeStoreIntOctets(p + 1, n - 1, (ASN1UINT)length);
}

bool isLength(int length) { return length >= 0 || length == ASN_K_INDEFLEN; }

/* Tag and length in front of what is written; the number of header octets. */
int putHeader(ASN1CTXT* pctxt, ASN1TagType tag, int length) {
  unsigned tagOcts = tagOctetCount(tag);
  unsigned n = tagOcts + lengthOctetCount(length);
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  ASN1OCTET* p = xeClaim(pctxt, n);
  storeTag(p, tagOcts, tag);
  storeLength(p + tagOcts, n - tagOcts, length);
  return (int)n;
}

/* header + contents, refusing a contents length that no buffer could have held. */
int addContents(ASN1CTXT* pctxt, int header, int length) {
  if (length > INT_MAX - header) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  return header + length;
}

}  // namespace

int xe_identifier(ASN1CTXT* pctxt, ASN1UINT value) { return xePutBase128(pctxt, value); }

int xe_tag(ASN1CTXT* pctxt, ASN1TagType tag) {
  unsigned n = tagOctetCount(tag);
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  storeTag(xeClaim(pctxt, n), n, tag);
  return (int)n;
}

int xe_len(ASN1CTXT* pctxt, int length) {
  if (!isLength(length)) return 0;
  unsigned n = lengthOctetCount(length);
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  storeLength(xeClaim(pctxt, n), n, length);
  return (int)n;
}

int xe_tag_len(ASN1CTXT* pctxt, ASN1TagType tag, int length) {
  if (!isLength(length)) return length; /* a status from the contents, passed on */
  int header = putHeader(pctxt, tag, length);
  if (header < 0 || length == ASN_K_INDEFLEN) return header;
  return addContents(pctxt, header, length);
}

int xe_TagAndIndefLen(ASN1CTXT* pctxt, ASN1TagType tag, int length) {
  if (length < 0) return length; /* a status from the contents, passed on */
  int header = putHeader(pctxt, tag, ASN_K_INDEFLEN);
  if (header < 0) return header;
  return addContents(pctxt, header, length);
}
