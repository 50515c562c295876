/* OBJECT IDENTIFIER with 32 and 64-bit arcs, and RELATIVE-OID, read from a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmObjId(ASN1CTXT* pctxt, ASN1OBJID* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_OBJID, xd_objid);
}

int berDecStrmObjId64(ASN1CTXT* pctxt, ASN1OID64* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_OBJID, xd_oid64);
}

int berDecStrmRelativeOID(ASN1CTXT* pctxt, ASN1RELOID* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_RELOID, xd_reloid);
}

QN_END_C
