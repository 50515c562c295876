/*
 * Byte streams attached to a codec context: the stream record (OSRTSTREAM, asn1type.h), the
 * file and memory devices beneath it, and the buffering layer with mark and reset that lets a
 * stream decoder look ahead.
 *
 * A context has at most one stream (ctxt->pStream). The record and the device records come from
 * the context's heap, marked saved so that resetting the heap between messages leaves the
 * stream alone; rtStreamRelease (called by rtFreeContext) returns them.
 *
 * Buffering uses the context's message buffer: for input, data[byteIndex..size) are the bytes
 * read from the device and not yet consumed, and the record's bufsize is the buffer's capacity;
 * for output, data[0..byteIndex) are bytes written and not yet passed to the device. A buffered
 * input stream keeps every byte from its mark on until the mark is dropped or reset to.
 *
 * The rtStream functions record their failures in the context's error record and return them:
 * -30 wrong direction or missing argument, -32 no stream set up, -40 a file that cannot be
 * opened. Device functions return their status unrecorded: -30 wrong device or direction,
 * -41/-42 file read/write errors, -1 a full caller's memory buffer.
 */
#ifndef QUILLON_RTSTREAM_H
#define QUILLON_RTSTREAM_H

#include <stdio.h>

#include "asn1type.h"

QN_BEGIN_C

/* Device kinds (OSRTSTREAM.id). */
#define OSRTSTRMID_FILE 1u
#define OSRTSTRMID_MEMORY 3u

/* A mark is set (with the read-ahead limit in readAheadLimit). */
#define OSRTSTRMF_MARKED 0x4000u

/* Read buffering, and the buffered layer's write staging, in bytes. */
#define OSRTSTRM_K_BUFSIZE 1024

/* Device record of a file stream. */
typedef struct OSRTFileDevice {
  ASN1CTXT* pctxt;
  FILE* fp;
  ASN1BOOL attached; /* the caller's FILE*: never closed by the stream */
} OSRTFileDevice;

/* Device record of a memory stream. */
typedef struct OSRTMemoryDevice {
  ASN1CTXT* pctxt;
  ASN1OCTET* data;
  ASN1UINT position;
  ASN1UINT size;     /* for an own output buffer: its allocated size */
  ASN1BOOL attached; /* the caller's buffer: neither grown nor freed */
} OSRTMemoryDevice;

/* ---- The stream record ------------------------------------------------------------------ */

/* Attaches a zeroed stream record (no device yet) to the context, releasing any earlier one. */
QN_API int rtStreamInit(ASN1CTXT* pctxt);
/* rtStreamInit, then a 1024-byte dynamic context buffer for read buffering (empty), the
 * buffered flag set and no mark. */
QN_API int rtStreamBufInit(ASN1CTXT* pctxt);
/* Closes a stream still open (flushing output; a failure is returned but the release goes
 * on), frees the device, the read buffer and the record, and detaches them from the context.
 * 0 when there is no stream. */
QN_API int rtStreamRelease(ASN1CTXT* pctxt);

/* Reads up to count bytes from the device (bypassing any buffered bytes): the number read,
 * 0 at the end, or a status; -32 with no stream, no read function or an output stream. */
QN_API long rtStreamRead(ASN1CTXT* pctxt, ASN1OCTET* pbuffer, size_t count);
/* Writes count bytes to the device: 0 or a status; -32 with no stream, no write function or
 * an input stream. Bytes staged by rtStreamBufWrite are not written first. */
QN_API int rtStreamWrite(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t count);
/* Skips count bytes of the device; -30 on a stream that is not input, -32 without skip. */
QN_API int rtStreamSkip(ASN1CTXT* pctxt, size_t count);
/* Writes staged output, then flushes the device; -30 on a stream that is not output. */
QN_API int rtStreamFlush(ASN1CTXT* pctxt);
/* Flushes an output stream (a failure is returned and the stream stays open), clears the
 * flags and closes the device. -32 with no stream or close function, or a stream already
 * closed. */
QN_API int rtStreamClose(ASN1CTXT* pctxt);
/* Bytes transferred to or from the device so far; -32 with no stream. */
QN_API long rtStreamGetIOBytes(ASN1CTXT* pctxt);

/* ---- Buffering -------------------------------------------------------------------------- */

/* Remembers the current position so that rtStreamBufReset can return to it while no more
 * than readAheadLimit bytes have been read since. An input stream without a read buffer gets
 * one. -30 for a stream that is not input. */
QN_API int rtStreamBufMark(ASN1CTXT* pctxt, ASN1UINT readAheadLimit);
/* Returns to the mark; -30 without a mark or when its limit has been passed (the mark is then
 * gone). The mark stays set. */
QN_API int rtStreamBufReset(ASN1CTXT* pctxt);
/* Reads exactly count bytes through the buffer: count, or -2 (unrecorded) when the stream
 * ends first, or a device status. Small reads refill the buffer; large ones go to the caller's
 * memory directly unless a mark needs them kept. */
QN_API long rtStreamBufRead(ASN1CTXT* pctxt, ASN1OCTET* pbuffer, size_t count);
/* Makes at least count unread bytes available at data + byteIndex of the context's buffer,
 * growing it when the mark or count need more room. Returns the bytes available, fewer than
 * count only when the stream has ended, or a status. */
QN_API long rtStreamBufPreRead(ASN1CTXT* pctxt, size_t count);
/* Skips count bytes, from the buffer first, then on the device (whose skip cannot tell the
 * end of the stream: a later read does). 0 or a status. */
QN_API int rtStreamBufSkip(ASN1CTXT* pctxt, size_t count);
/* Stages count bytes for the device, passing them on when the stage is full; a write of a
 * stage or more goes straight through. An unbuffered stream writes directly. 0 or a status. */
QN_API int rtStreamBufWrite(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t count);
/* Writes the staged bytes and flushes the device; -30 on a stream that is not output. */
QN_API int rtStreamBufFlush(ASN1CTXT* pctxt);
/* rtStreamClose, after which the read buffer is empty and unmarked (it stays allocated for a
 * device opened later). */
QN_API int rtStreamBufClose(ASN1CTXT* pctxt);
/* Bytes consumed through the buffering layer since the device was opened. */
QN_API long rtStreamBufGetPos(ASN1CTXT* pctxt);

/* ---- Devices ---------------------------------------------------------------------------- */

/* Opens pathname for output ("wb") when flags has OSRTSTRMF_OUTPUT, else for input ("rb")
 * when it has OSRTSTRMF_INPUT; -30 for neither, -40 when the file cannot be opened. Creates
 * the stream record when the context has none; a device already open is closed first. */
QN_API int rtStreamFileOpen(ASN1CTXT* pctxt, const char* pathname, ASN1USINT flags);
/* The same over the caller's open file, which the stream never closes. */
QN_API int rtStreamFileAttach(ASN1CTXT* pctxt, FILE* pFile, ASN1USINT flags);
/* A memory stream over a buffer of its own: output grows it on the context's heap (by what
 * is needed plus 512 bytes); input starts empty. */
QN_API int rtStreamMemoryCreate(ASN1CTXT* pctxt, ASN1USINT flags);
/* A memory stream over the caller's bufsize bytes, neither grown nor freed; a write that does
 * not fit fails with -1 and writes nothing. -30 for a null buffer or neither direction. */
QN_API int rtStreamMemoryAttach(ASN1CTXT* pctxt, ASN1OCTET* pbuffer, size_t bufsize,
                                ASN1USINT flags);
/* The memory device's buffer, after writing any staged output; *pLength (may be null) is the
 * size for input and the bytes written for output. Null without a memory stream. */
QN_API ASN1OCTET* rtStreamMemoryGetBuffer(ASN1CTXT* pctxt, size_t* pLength);

QN_END_C

#endif
