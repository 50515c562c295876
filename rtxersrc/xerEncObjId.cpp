/* OBJECT IDENTIFIER and RELATIVE-OID values as dotted decimal arcs. */
#include <quillon/rtValueText.h>

#include "xerEncCommon.h"

using namespace qn::xer;

namespace {

/* Dotted text of the longest identifier: 128 arcs of up to 20 digits, the dots and the NUL. */
constexpr size_t kOidText = ASN_K_MAXSUBIDS * 21;

/* The value rules of an identifier: two arcs at least, a first arc of 0, 1 or 2, and under
 * 0 and 1 a second arc below 40. */
template <typename Oid>
bool isValidObjId(const Oid* pvalue) {
  if (pvalue->numids < 2 || pvalue->numids > ASN_K_MAXSUBIDS) return false;
  if (pvalue->subid[0] > 2) return false;
  return pvalue->subid[0] == 2 || pvalue->subid[1] <= 39;
}

template <typename Oid, typename ToText>
int writeObjId(ASN1CTXT* pctxt, const Oid* pvalue, const char* elemName, ToText toText) {
  if (!pvalue) return ASN_E_INVPARAM;
  if (!isValidObjId(pvalue)) return ASN_E_INVOBJID;
  char text[kOidText];
  const int len = toText(pctxt, pvalue, text, sizeof text);
  if (len < 0) return len;
  return writeElement(pctxt, nameOr(elemName, "OBJECT_IDENTIFIER"), nullptr,
                      [&](TextStage& s) { s.put(text, static_cast<size_t>(len)); });
}

/* A relative identifier may have no arcs at all: its content is then empty. */
int writeRelativeOID(ASN1CTXT* pctxt, const ASN1OBJID* pvalue, const char* elemName) {
  if (!pvalue) return ASN_E_INVPARAM;
  if (pvalue->numids > ASN_K_MAXSUBIDS) return ASN_E_INVOBJID;
  char text[kOidText];
  int len = 0;
  if (pvalue->numids > 0) len = rtOidToStr(pctxt, pvalue, text, sizeof text);
  if (len < 0) return len;
  return writeElement(pctxt, nameOr(elemName, "RELATIVE_OID"), nullptr,
                      [&](TextStage& s) { s.put(text, static_cast<size_t>(len)); });
}

}  // namespace

QN_BEGIN_C

int xerEncObjId(ASN1CTXT* pctxt, const ASN1OBJID* pvalue, const char* elemName) {
  return XER_TRACE(pctxt, writeObjId(pctxt, pvalue, elemName, rtOidToStr));
}

int xerEncObjId64(ASN1CTXT* pctxt, const ASN1OID64* pvalue, const char* elemName) {
  return XER_TRACE(pctxt, writeObjId(pctxt, pvalue, elemName, rtOid64ToStr));
}

int xerEncRelativeOID(ASN1CTXT* pctxt, const ASN1OBJID* pvalue, const char* elemName) {
  return XER_TRACE(pctxt, writeRelativeOID(pctxt, pvalue, elemName));
}

QN_END_C
