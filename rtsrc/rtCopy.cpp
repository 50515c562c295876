/* Deep copies of the primitive value records into the context's heap. */
#include <string.h>

#include <quillon/rtCopy.h>
#include <quillon/rtMemHeap.h>

namespace {

/* count units of size bytes copied into the heap; null for none. */
int copyUnits(ASN1CTXT* pctxt, const void* src, size_t count, size_t size, void** dst_p) {
  *dst_p = nullptr;
  if (count == 0 || src == nullptr) return 0;
  void* copy = rtMemHeapAlloc(&pctxt->memHeap, count * size);
  if (copy == nullptr) return ASN_E_NOMEM;
  memcpy(copy, src, count * size);
  *dst_p = copy;
  return 0;
}

/* Copies a record of a count and a pointer to count units; the count is cleared with the
 * pointer when the copy fails, so the destination never claims data it does not have. */
template <typename Unit>
int copyCounted(ASN1CTXT* pctxt, ASN1UINT count, const Unit* src, ASN1UINT* dstCount,
                Unit** dstData, size_t units) {
  void* copy;
  int stat = copyUnits(pctxt, src, units, sizeof(Unit), &copy);
  *dstData = static_cast<Unit*>(copy);
  *dstCount = stat == 0 ? count : 0;
  return stat;
}

}  // namespace

QN_BEGIN_C

int rtCopyCharStr(ASN1CTXT* pctxt, const char* src, const char** dst_p) {
  void* copy;
  int stat = copyUnits(pctxt, src, src ? strlen(src) + 1 : 0, 1, &copy);
  *dst_p = static_cast<const char*>(copy);
  return stat;
}

int rtCopyDynOctStr(ASN1CTXT* pctxt, const ASN1DynOctStr* src, ASN1DynOctStr* dst) {
  ASN1OCTET* data;
  int stat = copyCounted(pctxt, src->numocts, src->data, &dst->numocts, &data,
                                        src->numocts);
  dst->data = data;
  return stat;
}

int rtCopyDynBitStr(ASN1CTXT* pctxt, const ASN1DynBitStr* src, ASN1DynBitStr* dst) {
  ASN1OCTET* data;
  int stat = copyCounted(pctxt, src->numbits, src->data, &dst->numbits, &data,
                                        (src->numbits + 7) / 8);
  dst->data = data;
  return stat;
}

int rtCopyOpenType(ASN1CTXT* pctxt, const ASN1TOpenType* src, ASN1TOpenType* dst) {
  ASN1OCTET* data;
  int stat = copyCounted(pctxt, src->numocts, src->data, &dst->numocts, &data,
                                        src->numocts);
  dst->data = data;
  return stat;
}

int rtCopy16BitCharStr(ASN1CTXT* pctxt, const Asn116BitCharString* src,
                       Asn116BitCharString* dst) {
  return copyCounted(pctxt, src->nchars, src->data, &dst->nchars,
                                          &dst->data, src->nchars);
}

int rtCopy32BitCharStr(ASN1CTXT* pctxt, const Asn132BitCharString* src,
                       Asn132BitCharString* dst) {
  return copyCounted(pctxt, src->nchars, src->data, &dst->nchars,
                                          &dst->data, src->nchars);
}

void rtCopyOID(const ASN1OBJID* src, ASN1OBJID* dst) {
  ASN1UINT count = src->numids < ASN_K_MAXSUBIDS ? src->numids : ASN_K_MAXSUBIDS;
  dst->numids = count;
  memcpy(dst->subid, src->subid, count * sizeof(ASN1UINT));
}

QN_END_C
