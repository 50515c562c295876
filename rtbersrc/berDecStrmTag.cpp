/* Identifiers, lengths and the structure of constructed values, read from a stream. */
#include "berStrmCommon.h"
#include "xd_common.h"

using namespace qn::bstrm;

namespace {

/* An identifier of a 29-bit tag number takes at most this many octets. */
constexpr ASN1UINT kMaxIdentifier = 6;
constexpr ASN1UINT kMaxLengthOctets = 5;

const ASN1OCTET* readPosition(ASN1CTXT* pctxt) {
  return pctxt->buffer.data + pctxt->buffer.byteIndex;
}

int peekTag(ASN1CTXT* pctxt, ASN1TagType* tag_p, ASN1UINT* octets_p) {
  long avail = ensureBuffered(pctxt, kMaxIdentifier);
  if (avail < 0) return (int)avail;
  ASN1UINT idx = 0;
  int stat = qn::xd::readTag(readPosition(pctxt), (ASN1UINT)avail, &idx, tag_p);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  *octets_p = idx;
  return 0;
}

int mismatch(ASN1CTXT* pctxt, ASN1TagType expected, ASN1TagType parsed) {
  qn::xd::addTagParms(pctxt, expected, parsed);
  return LOG_RTERR(pctxt, ASN_E_IDNOTFOU);
}

void takeHeader(ASN1CTXT* pctxt, ASN1TagType tag, ASN1UINT octets) {
  consumeBuffered(pctxt, octets);
  qn::xd::setConstructedFlag(pctxt, (tag & TM_CONS) != 0);
}

}  // namespace

QN_BEGIN_C

int berDecStrmTag(ASN1CTXT* pctxt, ASN1TagType* tag_p) {
  ASN1TagType tag = 0;
  ASN1UINT octets = 0;
  int stat = peekTag(pctxt, &tag, &octets);
  if (stat < 0) return stat;
  takeHeader(pctxt, tag, octets);
  if (tag_p) *tag_p = tag;
  return 0;
}

int berDecStrmPeekTag(ASN1CTXT* pctxt, ASN1TagType* tag_p) {
  ASN1TagType tag = 0;
  ASN1UINT octets = 0;
  int stat = peekTag(pctxt, &tag, &octets);
  if (stat < 0) return stat;
  if (tag_p) *tag_p = tag;
  return 0;
}

int berDecStrmLength(ASN1CTXT* pctxt, int* len_p) {
  long avail = ensureBuffered(pctxt, kMaxLengthOctets);
  if (avail < 0) return (int)avail;
  ASN1UINT idx = 0;
  int len = 0;
  int stat = readStreamLength(readPosition(pctxt), (ASN1UINT)avail, &idx, &len);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  consumeBuffered(pctxt, idx);
  if (len_p) *len_p = len;
  return 0;
}

int berDecStrmTagAndLen(ASN1CTXT* pctxt, ASN1TagType* tag_p, int* len_p) {
  Header h = {0, 0, 0};
  int stat = peekHeader(pctxt, &h);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  takeHeader(pctxt, h.tag, h.octets);
  if (tag_p) *tag_p = h.tag;
  if (len_p) *len_p = h.len;
  return 0;
}

int berDecStrmMatchTag(ASN1CTXT* pctxt, ASN1TagType tag, int* len_p, int advance) {
  Header h = {0, 0, 0};
  int stat = peekHeader(pctxt, &h);
  /* Running out of stream while looking for a component means it is absent: -3, as for a
   * buffer. */
  if (stat == ASN_E_ENDOFBUF) return mismatch(pctxt, tag, 0);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  if (((h.tag ^ tag) & ~TM_CONS) != 0) return mismatch(pctxt, tag, h.tag);
  if (advance) takeHeader(pctxt, h.tag, h.octets);
  if (len_p) *len_p = h.len;
  return 0;
}

int berDecStrmMatchEOC(ASN1CTXT* pctxt) {
  Header h = {0, 0, 0};
  int stat = peekHeader(pctxt, &h);
  if (stat < 0 && stat != ASN_E_ENDOFBUF) return LOG_RTERR(pctxt, stat);
  if (stat < 0 || h.tag != ASN_ID_EOC || h.len != 0) return mismatch(pctxt, ASN_ID_EOC, h.tag);
  consumeBuffered(pctxt, h.octets);
  return 0;
}

void berDecStrmInitCCB(ASN1CTXT* pctxt, ASN1StrmCCB* ccb_p, int length) {
  ccb_p->start = pctxt->pStream ? pctxt->pStream->bytesRead : 0;
  ccb_p->len = length;
}

int berDecStrmChkEnd(ASN1CTXT* pctxt, ASN1StrmCCB* ccb_p) {
  if (!pctxt->pStream) return 1;
  if (ccb_p->len == ASN_K_INDEFLEN) {
    Header h = {0, 0, 0};
    int stat = peekHeader(pctxt, &h);
    /* Any other bad header is left for the element decoder to report. */
    if (stat == ASN_E_ENDOFBUF) return 1;
    return stat == 0 && h.tag == 0 && h.len == 0;
  }
  if (pctxt->pStream->bytesRead - ccb_p->start >= (ASN1UINT)ccb_p->len) return 1;
  return ensureBuffered(pctxt, 1) == 0;
}

int berDecStrmNextElement(ASN1CTXT* pctxt) { return traced(pctxt, skipElement(pctxt)); }

int berDecStrmOpenType(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numocts_p) {
  auto decode = [&](int, int) { return xd_OpenType(pctxt, object_p2, numocts_p); };
  return traced(pctxt, decodeBorrowing(pctxt, ASN1EXPL, 0, ASN_K_NOTAG, true, object_p2,
                                       decode));
}

QN_END_C
