/* INTEGER of any size, given as text. */
#include <quillon/rtBigInt.h>

#include "xe_common.h"

namespace {

/* Serial numbers and most key parameters fit here, so the usual value needs no heap. */
const ASN1UINT kLocalMagnitude = 64;

/* The minimal two's complement octets straight into the buffer, written right-aligned in room
 * for the magnitude and a sign octet. A static buffer cannot make that room, but what is left
 * of it may still hold a value without a sign octet; the conversion says when it does not. */
int putBigIntContents(ASN1CTXT* pctxt, const ASN1BigInt* value) {
  ASN1BUFFER& b = pctxt->buffer;
  ASN1UINT room = value->numocts + 1;
  if (b.byteIndex < room && !b.dynamic) {
    room = b.byteIndex;
  }
  else {
    int stat = xeReserve(pctxt, room);
    if (stat < 0) return stat;
  }
  int len = rtBigIntGetOctets(pctxt, value, b.data + b.byteIndex - room, room);
  if (len > 0) xeClaim(pctxt, (ASN1UINT)len);
  return len;
}

}  // namespace

int xe_bigint(ASN1CTXT* pctxt, const char* object_p, int tagging) {
  ASN1OCTET local[kLocalMagnitude];
  ASN1BigInt value;
  rtBigIntInit(&value);
  value.mag = local;
  value.allocated = kLocalMagnitude;
  int len = rtBigIntSetStr(pctxt, &value, object_p, 0);
  if (len >= 0) len = putBigIntContents(pctxt, &value);
  rtBigIntFree(pctxt, &value);
  return xeFinishPrimitive(pctxt, len, tagging, ASN_ID_INT);
}
