/* OBJECT IDENTIFIER with 32 and 64-bit arcs, and RELATIVE-OID. */
#include "xd_common.h"

using namespace qn::xd;

namespace {

/* One base-128 subidentifier. One that is cut off by the end of the contents (last octet
 * with the continuation bit still set) is deliberately taken as it stands; one too wide for
 * Arc is an error. */
template <typename Arc>
int readSubid(const ASN1OCTET* p, ASN1UINT numocts, ASN1UINT* pos_p, Arc* subid_p) {
  constexpr Arc kTopGroup = (Arc)(~(Arc)0 >> 7);
  ASN1UINT pos = *pos_p;
  Arc value = 0;
  ASN1OCTET octet;
  do {
    octet = p[pos++];
    if (value > kTopGroup) return ASN_E_INVOBJID;
    value = (Arc)((value << 7) | (octet & 0x7Fu));
  } while ((octet & 0x80) && pos < numocts);
  *pos_p = pos;
  *subid_p = value;
  return 0;
}

/* Appends an arc; beyond the record's capacity it refuses. */
template <typename Arc>
bool appendArc(ASN1UINT* numids_p, Arc* arcs, Arc arc) {
  if (*numids_p >= ASN_K_MAXSUBIDS) return false;
  arcs[(*numids_p)++] = arc;
  return true;
}

/* The first subidentifier holds two arcs: 40 x first + second, the first arc being at most
 * 2 and the second unbounded under 2. */
template <typename Arc>
void splitFirstSubid(Arc subid, Arc* first_p, Arc* second_p) {
  Arc first = subid / 40;
  if (first > 2) first = 2;
  *first_p = first;
  *second_p = first == 2 ? subid - 80 : subid % 40;
}

template <typename Arc>
int decodeArcs(ASN1CTXT* pctxt, ASN1UINT* numids_p, Arc* arcs, bool absolute, int tagging,
               int length) {
  if (tagging) {
    int stat = matchPrimitiveHeader(pctxt, absolute ? ASN_ID_OBJID : ASN_ID_RELOID, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  if (length < 1) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);

  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  const ASN1UINT numocts = (ASN1UINT)length;
  ASN1UINT numids = 0;
  ASN1UINT pos = 0;
  if (absolute && p[0] < 0x80) {
    /* The first subidentifier of nearly every identifier is one octet (0.x, 1.x, 2.0-47). */
    splitFirstSubid<Arc>(p[0], &arcs[0], &arcs[1]);
    numids = 2;
    pos = 1;
  }
  while (pos < numocts) {
    /* One-octet arcs, the common case, are stored without the general loop. */
    if (p[pos] < 0x80 && numids < ASN_K_MAXSUBIDS) {
      arcs[numids++] = p[pos++];
      continue;
    }
    Arc subid;
    stat = readSubid(p, numocts, &pos, &subid);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    bool stored;
    if (absolute && numids == 0) {
      Arc first, second;
      splitFirstSubid(subid, &first, &second);
      stored = appendArc(&numids, arcs, first) && appendArc(&numids, arcs, second);
    } else {
      stored = appendArc(&numids, arcs, subid);
    }
    if (!stored) {
      /* Too many arcs: what fits is kept, and the status is left for the caller to record,
       * as the generated decoders do on their way out. */
      *numids_p = numids;
      return ASN_E_INVOBJID;
    }
  }
  pctxt->buffer.byteIndex += numocts;
  *numids_p = numids;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xd_objid(ASN1CTXT* pctxt, ASN1OBJID* object_p, int tagging, int length) {
  return decodeArcs(pctxt, &object_p->numids, object_p->subid, true, tagging, length);
}

int xd_oid64(ASN1CTXT* pctxt, ASN1OID64* object_p, int tagging, int length) {
  return decodeArcs(pctxt, &object_p->numids, object_p->subid, true, tagging, length);
}

int xd_reloid(ASN1CTXT* pctxt, ASN1RELOID* object_p, int tagging, int length) {
  return decodeArcs(pctxt, &object_p->numids, object_p->subid, false, tagging, length);
}

QN_END_C
