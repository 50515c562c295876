/* OBJECT IDENTIFIER and RELATIVE-OID values: decimal arcs joined by points. */
#include <limits>
#include <type_traits>

#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

/* One arc's digits at p: its value and the end of the digits; -4 when there are none, -33
 * when the value does not fit an arc. */
template <typename Arc>
int readArc(const char*& p, const char* end, Arc& arc) {
  const char* start = p;
  Arc value = 0;
  for (; p < end && isDigit(*p); ++p) {
    const Arc digit = static_cast<Arc>(*p - '0');
    if (value > (std::numeric_limits<Arc>::max() - digit) / 10) return ASN_E_TOOBIG;
    value = static_cast<Arc>(value * 10 + digit);
  }
  if (p == start) return ASN_E_INVOBJID;
  arc = value;
  return 0;
}

/* Arcs separated by single points, white space around them; the arc count is 0 on entry. */
template <typename Oid>
int readArcs(ASN1CTXT* pctxt, Oid& oid) {
  const Text t = trimSpace(inputText(pctxt));
  const char* p = t.begin;
  while (p < t.end) {
    if (oid.numids == ASN_K_MAXSUBIDS) return ASN_E_INVOBJID;
    int stat = readArc(p, t.end, oid.subid[oid.numids]);
    if (stat != 0) return stat;
    oid.numids++;
    if (p == t.end) break;
    if (*p != '.' || ++p == t.end) return ASN_E_INVOBJID;
  }
  return 0;
}

/* The rules every encodable identifier meets: two arcs at least, a first arc of 0, 1 or 2, and
 * under 0 and 1 a second arc below 40 (the two share one subidentifier in BER). */
template <typename Oid>
bool isEncodable(const Oid& oid) {
  if (oid.numids < 2 || oid.subid[0] > 2) return false;
  return oid.subid[0] == 2 || oid.subid[1] <= 39;
}

template <typename Oid>
int decodeObjId(ASN1CTXT* pctxt, Oid* pvalue) {
  pvalue->numids = 0;
  int stat = readArcs(pctxt, *pvalue);
  if (stat != 0) return LOG_RTERR(pctxt, stat);
  /* Returned without a record: the arcs were read, and a caller may still want them. */
  return isEncodable(*pvalue) ? 0 : ASN_E_INVOBJID;
}

}  // namespace

QN_BEGIN_C

int xerDecObjId(ASN1CTXT* pctxt, ASN1OBJID* pvalue) { return decodeObjId(pctxt, pvalue); }

int xerDecObjId64(ASN1CTXT* pctxt, ASN1OID64* pvalue) { return decodeObjId(pctxt, pvalue); }

int xerDecRelativeOID(ASN1CTXT* pctxt, ASN1OBJID* pvalue) {
  pvalue->numids = 0;
  return XERDEC_TRACE(pctxt, readArcs(pctxt, *pvalue));
}

QN_END_C
