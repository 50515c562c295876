/* File streams over the C library's FILE. */
#include <limits.h>

#include "rtStreamImpl.h"

using namespace qn::strm;

namespace {

/* The device must belong to a file stream open in the given direction (0: either). */
OSRTFileDevice* fileDevice(void* device, ASN1USINT direction) {
  OSRTFileDevice* d = static_cast<OSRTFileDevice*>(device);
  if (!d || !d->fp) return nullptr;
  const OSRTSTREAM* s = d->pctxt->pStream;
  if (!s || s->id != OSRTSTRMID_FILE) return nullptr;
  if (direction && !(s->flags & direction)) return nullptr;
  return d;
}

long fileRead(void* device, ASN1OCTET* buf, size_t count) {
  OSRTFileDevice* d = fileDevice(device, OSRTSTRMF_INPUT);
  if (!d) return ASN_E_INVPARAM;
  if (count > (size_t)LONG_MAX) count = (size_t)LONG_MAX;
  size_t n = fread(buf, 1, count, d->fp);
  if (n < count && ferror(d->fp)) return ASN_E_FILEREAD;
  return (long)n;
}

long fileWrite(void* device, const ASN1OCTET* data, size_t count) {
  OSRTFileDevice* d = fileDevice(device, OSRTSTRMF_OUTPUT);
  if (!d) return ASN_E_INVPARAM;
  if (fwrite(data, 1, count, d->fp) < count) return ASN_E_FILEWRITE;
  return 0;
}

int fileSkip(void* device, size_t count) {
  OSRTFileDevice* d = fileDevice(device, OSRTSTRMF_INPUT);
  if (!d) return ASN_E_INVPARAM;
  while (count > 0) {
    long step = count > (size_t)LONG_MAX ? LONG_MAX : (long)count;
    if (fseek(d->fp, step, SEEK_CUR) != 0) return ASN_E_FILEREAD;
    count -= (size_t)step;
  }
  return 0;
}

int fileFlush(void* device) {
  OSRTFileDevice* d = fileDevice(device, OSRTSTRMF_OUTPUT);
  if (!d) return ASN_E_INVPARAM;
  return fflush(d->fp) == 0 ? 0 : ASN_E_FILEWRITE;
}

/* The stream's flags are already cleared when it closes its device, so only the kind is
 * checked here. */
int fileClose(void* device) {
  OSRTFileDevice* d = fileDevice(device, 0);
  if (!d) return ASN_E_INVPARAM;
  int stat = 0;
  if (!d->attached && fclose(d->fp) != 0) stat = ASN_E_FILEWRITE;
  freeSaved(d->pctxt, d);
  return stat;
}

const DeviceProcs kInputProcs = {fileRead, nullptr, nullptr, fileClose, fileSkip};
const DeviceProcs kOutputProcs = {nullptr, fileWrite, fileFlush, fileClose, nullptr};

int attachFile(ASN1CTXT* pctxt, FILE* fp, ASN1BOOL attached, ASN1USINT flags) {
  OSRTFileDevice* d = static_cast<OSRTFileDevice*>(allocSaved(pctxt, sizeof(OSRTFileDevice)));
  if (!d) {
    if (!attached) fclose(fp);
    return LOG_RTERR(pctxt, ASN_E_NOMEM);
  }
  d->pctxt = pctxt;
  d->fp = fp;
  d->attached = attached;
  const bool output = (flags & OSRTSTRMF_OUTPUT) != 0;
  int stat = attachDevice(pctxt, OSRTSTRMID_FILE, d, output ? kOutputProcs : kInputProcs, flags);
  if (stat < 0) {
    if (!attached) fclose(fp);
    freeSaved(pctxt, d);
  }
  return stat;
}

}  // namespace

QN_BEGIN_C

int rtStreamFileOpen(ASN1CTXT* pctxt, const char* pathname, ASN1USINT flags) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = checkDirection(pctxt, flags);
  if (stat < 0) return stat;
  if (!pathname) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  FILE* fp = fopen(pathname, (flags & OSRTSTRMF_OUTPUT) ? "wb" : "rb");
  if (!fp) return LOG_RTERR(pctxt, ASN_E_FILNOTFOU);
  return attachFile(pctxt, fp, 0, flags);
}

int rtStreamFileAttach(ASN1CTXT* pctxt, FILE* pFile, ASN1USINT flags) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = checkDirection(pctxt, flags);
  if (stat < 0) return stat;
  if (!pFile) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return attachFile(pctxt, pFile, 1, flags);
}

QN_END_C
