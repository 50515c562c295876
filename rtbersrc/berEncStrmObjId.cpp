/* OBJECT IDENTIFIER with 32 and 64-bit arcs, and RELATIVE-OID, written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berEncStrmObjId(ASN1CTXT* pctxt, const ASN1OBJID* pvalue, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_objid(pctxt, pvalue, t); });
}

int berEncStrmObjId64(ASN1CTXT* pctxt, const ASN1OID64* pvalue, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_oid64(pctxt, pvalue, t); });
}

int berEncStrmRelativeOID(ASN1CTXT* pctxt, const ASN1RELOID* pvalue, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_reloid(pctxt, pvalue, t); });
}

QN_END_C
