/* OBJECT IDENTIFIER with 32 and 64-bit arcs, and RELATIVE-OID. */
#include <limits>

#include "xe_common.h"

namespace {

/* Every arc as its own base-128 subidentifier, counted first so the run is stored in one
 * claim. Most arcs are below 128 and take the one-octet path. */
template <typename Arc>
int putSubidentifiers(ASN1CTXT* pctxt, const Arc* arcs, ASN1UINT count) {
  ASN1UINT n = 0;
  for (ASN1UINT i = 0; i < count; ++i) n += arcs[i] < 0x80 ? 1 : xeBase128Count(arcs[i]);
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  ASN1OCTET* p = xeClaim(pctxt, n);
  for (ASN1UINT i = 0; i < count; ++i) {
    if (arcs[i] < 0x80) {
      *p++ = (ASN1OCTET)arcs[i];
      continue;
    }
    unsigned octets = xeBase128Count(arcs[i]);
    xeStoreBase128(p, octets, arcs[i]);
    p += octets;
  }
  return (int)n;
}

/* The first two arcs share one subidentifier, first * 40 + second, which must fit an arc. */
template <typename Arc>
bool isValidOidHead(Arc first, Arc second) {
  if (first > 2) return false;
  if (first < 2) return second <= 39;
  return second <= std::numeric_limits<Arc>::max() - 80;
}

template <typename Oid>
int putOidContents(ASN1CTXT* pctxt, const Oid* oid) {
  if (oid == nullptr || oid->numids < 2 || oid->numids > ASN_K_MAXSUBIDS ||
      !isValidOidHead(oid->subid[0], oid->subid[1]))
    return LOG_RTERR(pctxt, ASN_E_INVOBJID);
  int tail = putSubidentifiers(pctxt, oid->subid + 2, oid->numids - 2);
  if (tail < 0) return tail;
  int head = xePutBase128(pctxt, oid->subid[0] * 40 + oid->subid[1]);
  if (head < 0) return head;
  return head + tail;
}

}  // namespace

int xe_objid(ASN1CTXT* pctxt, const ASN1OBJID* object_p, int tagging) {
  return xeFinishPrimitive(pctxt, putOidContents(pctxt, object_p), tagging, ASN_ID_OBJID);
}

int xe_oid64(ASN1CTXT* pctxt, const ASN1OID64* object_p, int tagging) {
  return xeFinishPrimitive(pctxt, putOidContents(pctxt, object_p), tagging, ASN_ID_OBJID);
}

int xe_reloid(ASN1CTXT* pctxt, const ASN1RELOID* object_p, int tagging) {
  if (object_p == nullptr || object_p->numids == 0 || object_p->numids > ASN_K_MAXSUBIDS)
    return LOG_RTERR(pctxt, ASN_E_INVOBJID);
  return xeFinishPrimitive(pctxt, putSubidentifiers(pctxt, object_p->subid, object_p->numids),
                           tagging, ASN_ID_RELOID);
}
