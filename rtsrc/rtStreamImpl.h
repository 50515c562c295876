/* Private to the stream layer: what the record functions, the devices and the buffering share. */
#ifndef QUILLON_RTSTREAMIMPL_H
#define QUILLON_RTSTREAMIMPL_H

#include <quillon/rtMemHeap.h>
#include <quillon/rtStream.h>

#include "rtErrLog.h"

namespace qn::strm {

constexpr ASN1USINT kDirections = OSRTSTRMF_INPUT | OSRTSTRMF_OUTPUT;

inline bool isInput(const OSRTSTREAM* s) { return s && (s->flags & OSRTSTRMF_INPUT); }
inline bool isOutput(const OSRTSTREAM* s) { return s && (s->flags & OSRTSTRMF_OUTPUT); }

/* The context's buffer belongs to the stream once buffering has been set up; bufsize stays
 * after close, so release still knows to free it. */
inline bool ownsBuffer(const OSRTSTREAM* s) { return s && s->bufsize != 0; }

/* Device records and the stream record live on the context's heap but survive its resets. */
inline void* allocSaved(ASN1CTXT* pctxt, size_t nbytes) {
  void* mem = rtMemHeapAllocZ(&pctxt->memHeap, nbytes);
  if (mem) rtMemHeapMarkSaved(&pctxt->memHeap, mem, 1);
  return mem;
}

inline void freeSaved(ASN1CTXT* pctxt, void* mem) { rtMemHeapFreePtr(&pctxt->memHeap, mem); }

/* A device's procedures, as the open functions install them. */
struct DeviceProcs {
  OSRTStreamReadProc read;
  OSRTStreamWriteProc write;
  OSRTStreamFlushProc flush;
  OSRTStreamCloseProc close;
  OSRTStreamSkipProc skip;
};

/* Installs a device on the context's stream (creating the record when there is none, closing
 * a device already open); an input stream starts with an empty, unmarked buffer and position
 * 0. Records its failures. */
int attachDevice(ASN1CTXT* pctxt, ASN1UINT kind, void* device, const DeviceProcs& procs,
                 ASN1USINT flags);

/* The direction bits a device may be opened with; -30 (recorded) when there are none. */
int checkDirection(ASN1CTXT* pctxt, ASN1USINT flags);

/* Passes staged output bytes to the device; 0 or the device's status (recorded). */
int writeStaged(ASN1CTXT* pctxt);

/* Forgets every buffered input byte and the mark. */
void emptyReadBuffer(ASN1CTXT* pctxt);

}  // namespace qn::strm

#endif
