/* End of a constructed value. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_chkend(ASN1CTXT* pctxt, ASN1CCB* ccb_p) {
  const ASN1BUFFER& buf = pctxt->buffer;
  if (ccb_p->len == ASN_K_INDEFLEN) {
    ASN1UINT idx = buf.byteIndex;
    ASN1TagType tag = 0;
    int len = 0;
    int stat = readHeader(pctxt, &idx, &tag, &len);
    /* Any other bad header is left for the element decoder to report. */
    if (stat == ASN_E_ENDOFBUF) return 1;
    return stat == 0 && tag == 0 && len == 0;
  }
  if (buf.byteIndex >= buf.size) return 1;
  const ASN1OCTET* here = buf.data + buf.byteIndex;
  return here >= ccb_p->ptr && here - ccb_p->ptr >= ccb_p->len;
}

QN_END_C
