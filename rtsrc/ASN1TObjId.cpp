/* Object identifiers with value semantics over the plain records. */
#include <string.h>

#include <quillon/asn1CppTypes.h>

namespace {

/* Copies count arcs, never more than the record holds: a count beyond the capacity can only
 * come from a damaged record, and copying it would run past both arrays. */
template <class Arc>
void copyArcs(ASN1UINT& numids, Arc* dest, ASN1UINT count, const Arc* src) {
  ASN1UINT n = count < ASN_K_MAXSUBIDS ? count : ASN_K_MAXSUBIDS;
  if (!src) n = 0;
  if (n != 0 && dest != src) memcpy(dest, src, n * sizeof(Arc));
  numids = n;
}

template <class Record>
bool sameArcs(const Record& lhs, const Record& rhs) {
  if (lhs.numids != rhs.numids) return false;
  ASN1UINT n = lhs.numids < ASN_K_MAXSUBIDS ? lhs.numids : ASN_K_MAXSUBIDS;
  for (ASN1UINT i = 0; i < n; i++) {
    if (lhs.subid[i] != rhs.subid[i]) return false;
  }
  return true;
}

}  // namespace

ASN1TObjId::ASN1TObjId(ASN1OCTET numIds, const ASN1UINT* subIds) {
  copyArcs(numids, subid, numIds, subIds);
}

ASN1TObjId::ASN1TObjId(const ASN1OBJID& oid) { copyArcs(numids, subid, oid.numids, oid.subid); }

ASN1TObjId::ASN1TObjId(const ASN1TObjId& oid)
    : ASN1TObjId(static_cast<const ASN1OBJID&>(oid)) {}

ASN1TObjId& ASN1TObjId::operator=(const ASN1OBJID& rhs) {
  copyArcs(numids, subid, rhs.numids, rhs.subid);
  return *this;
}

ASN1TObjId& ASN1TObjId::operator=(const ASN1TObjId& rhs) {
  copyArcs(numids, subid, rhs.numids, rhs.subid);
  return *this;
}

ASN1TObjId64::ASN1TObjId64(ASN1OCTET numIds, const ASN1UINT64* subIds) {
  copyArcs(numids, subid, numIds, subIds);
}

ASN1TObjId64::ASN1TObjId64(const ASN1OID64& oid) {
  copyArcs(numids, subid, oid.numids, oid.subid);
}

ASN1TObjId64::ASN1TObjId64(const ASN1TObjId64& oid)
    : ASN1TObjId64(static_cast<const ASN1OID64&>(oid)) {}

ASN1TObjId64& ASN1TObjId64::operator=(const ASN1OID64& rhs) {
  copyArcs(numids, subid, rhs.numids, rhs.subid);
  return *this;
}

ASN1TObjId64& ASN1TObjId64::operator=(const ASN1TObjId64& rhs) {
  copyArcs(numids, subid, rhs.numids, rhs.subid);
  return *this;
}

bool operator==(const ASN1OBJID& lhs, const ASN1OBJID& rhs) { return sameArcs(lhs, rhs); }

bool operator!=(const ASN1OBJID& lhs, const ASN1OBJID& rhs) { return !sameArcs(lhs, rhs); }

bool operator==(const ASN1OID64& lhs, const ASN1OID64& rhs) { return sameArcs(lhs, rhs); }

bool operator!=(const ASN1OID64& lhs, const ASN1OID64& rhs) { return !sameArcs(lhs, rhs); }
