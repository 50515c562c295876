/* Length of an encoding whose outer length is indefinite. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_indeflen_ex(const ASN1OCTET* msg_p, int bufSize) {
  if (!msg_p) return ASN_E_INVPARAM;
  const ASN1UINT end = bufSize < 1 ? 0x7FFFFFFFu : (ASN1UINT)bufSize;
  ASN1UINT idx = 0;
  ASN1TagType tag;
  int len;
  int stat = readHeaderAt(msg_p, end, &idx, &tag, &len);
  if (stat < 0) return stat;
  if (len != ASN_K_INDEFLEN) return ASN_E_INVLEN;
  stat = skipToEOC(msg_p, end, &idx);
  if (stat < 0) return stat;
  return (int)idx;
}

QN_END_C
