/* Memory streams over a buffer of their own (grown on the context's heap) or the caller's. */
#include <string.h>

#include "rtStreamImpl.h"

using namespace qn::strm;

namespace {

/* An own output buffer grows by what the write needs plus this margin: steady, predictable
 * growth rather than doubling, since memory streams mostly take one message. */
constexpr ASN1UINT kGrowthMargin = 512;

OSRTMemoryDevice* memoryDevice(void* device, ASN1USINT direction) {
  OSRTMemoryDevice* d = static_cast<OSRTMemoryDevice*>(device);
  if (!d) return nullptr;
  const OSRTSTREAM* s = d->pctxt->pStream;
  if (!s || s->id != OSRTSTRMID_MEMORY) return nullptr;
  if (direction && !(s->flags & direction)) return nullptr;
  return d;
}

ASN1UINT remaining(const OSRTMemoryDevice* d) { return d->size - d->position; }

long memRead(void* device, ASN1OCTET* buf, size_t count) {
  OSRTMemoryDevice* d = memoryDevice(device, OSRTSTRMF_INPUT);
  if (!d) return ASN_E_INVPARAM;
  ASN1UINT n = remaining(d);
  if (count < n) n = (ASN1UINT)count;
  if (n) memcpy(buf, d->data + d->position, n);
  d->position += n;
  return (long)n;
}

int growOwnBuffer(OSRTMemoryDevice* d, size_t count) {
  ASN1UINT64 wanted = (ASN1UINT64)d->position + count + kGrowthMargin;
  if (wanted > 0xFFFFFFFFu) return ASN_E_NOMEM;
  ASN1CTXT* pctxt = d->pctxt;
  ASN1OCTET* grown =
      static_cast<ASN1OCTET*>(rtMemHeapRealloc(&pctxt->memHeap, d->data, (size_t)wanted));
  if (!grown) return ASN_E_NOMEM;
  rtMemHeapMarkSaved(&pctxt->memHeap, grown, 1);
  d->data = grown;
  d->size = (ASN1UINT)wanted;
  return 0;
}

long memWrite(void* device, const ASN1OCTET* data, size_t count) {
  OSRTMemoryDevice* d = memoryDevice(device, OSRTSTRMF_OUTPUT);
  if (!d) return ASN_E_INVPARAM;
  if (count > remaining(d)) {
    if (d->attached) return ASN_E_BUFOVFLW;
    int stat = growOwnBuffer(d, count);
    if (stat < 0) return stat;
  }
  if (count) memcpy(d->data + d->position, data, count);
  d->position += (ASN1UINT)count;
  return 0;
}

int memSkip(void* device, size_t count) {
  OSRTMemoryDevice* d = memoryDevice(device, OSRTSTRMF_INPUT);
  if (!d) return ASN_E_INVPARAM;
  ASN1UINT n = remaining(d);
  d->position += count < n ? (ASN1UINT)count : n;
  return 0;
}

int memClose(void* device) {
  OSRTMemoryDevice* d = memoryDevice(device, 0);
  if (!d) return ASN_E_INVPARAM;
  if (!d->attached && d->data) freeSaved(d->pctxt, d->data);
  freeSaved(d->pctxt, d);
  return 0;
}

const DeviceProcs kInputProcs = {memRead, nullptr, nullptr, memClose, memSkip};
const DeviceProcs kOutputProcs = {nullptr, memWrite, nullptr, memClose, nullptr};

int attachMemory(ASN1CTXT* pctxt, ASN1OCTET* data, ASN1UINT size, ASN1BOOL attached,
                 ASN1USINT flags) {
  auto* d = static_cast<OSRTMemoryDevice*>(allocSaved(pctxt, sizeof(OSRTMemoryDevice)));
  if (!d) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  d->pctxt = pctxt;
  d->data = data;
  d->size = size;
  d->attached = attached;
  const bool output = (flags & OSRTSTRMF_OUTPUT) != 0;
  int stat =
      attachDevice(pctxt, OSRTSTRMID_MEMORY, d, output ? kOutputProcs : kInputProcs, flags);
  if (stat < 0) freeSaved(pctxt, d);
  return stat;
}

}  // namespace

QN_BEGIN_C

int rtStreamMemoryCreate(ASN1CTXT* pctxt, ASN1USINT flags) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = checkDirection(pctxt, flags);
  if (stat < 0) return stat;
  return attachMemory(pctxt, nullptr, 0, 0, flags);
}

int rtStreamMemoryAttach(ASN1CTXT* pctxt, ASN1OCTET* pbuffer, size_t bufsize,
                         ASN1USINT flags) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = checkDirection(pctxt, flags);
  if (stat < 0) return stat;
  if (!pbuffer || (size_t)(ASN1UINT)bufsize != bufsize) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return attachMemory(pctxt, pbuffer, (ASN1UINT)bufsize, 1, flags);
}

ASN1OCTET* rtStreamMemoryGetBuffer(ASN1CTXT* pctxt, size_t* pLength) {
  if (!pctxt) return nullptr;
  OSRTSTREAM* s = pctxt->pStream;
  if (!s || s->id != OSRTSTRMID_MEMORY || !s->device) return nullptr;
  auto* d = static_cast<OSRTMemoryDevice*>(s->device);
  if (isOutput(s)) {
    if (writeStaged(pctxt) < 0) return nullptr;
    if (pLength) *pLength = d->position;
  } else if (isInput(s)) {
    if (pLength) *pLength = d->size;
  } else {
    return nullptr;
  }
  return d->data;
}

QN_END_C
