/*
 * The codec context's lifecycle, the error record (status, parameters, trace) with its
 * formatting and printing, the older xu_ forwarders and the diagnostic switch.
 * Functions return 0 or a negative status unless said otherwise.
 */
#ifndef QUILLON_RTCONTEXT_H
#define QUILLON_RTCONTEXT_H

#include "asn1type.h"

QN_BEGIN_C

/* Zero-fills the record, creates its heap (shared as memHeap and msgMemHeap). */
QN_API int rtInitContext(ASN1CTXT* pctxt, void* pMemAllocCtx);
/* Attaches a caller's buffer, or with a null address a dynamic one of bufsiz (0: 16384) bytes.
 * -32 on an uninitialised context, -12 when the dynamic buffer cannot be had. */
QN_API int rtInitContextBuffer(ASN1CTXT* pctxt, ASN1OCTET* bufaddr, int bufsiz);
/* Initialises without a heap of its own yet; copies the parent's allocation context, flags and
 * buffer state byte. */
QN_API int rtInitSubContext(ASN1CTXT* pctxt, ASN1CTXT* pParent);
/* A malloc'ed, initialised context that rtFreeContext returns to free; null on failure. */
QN_API ASN1CTXT* rtNewContext(void);
/* Releases buffer, stream, lists, error parameters and heaps; nothing on an uninitialised one. */
QN_API void rtFreeContext(ASN1CTXT* pctxt);
/* Copies the buffer descriptor and the flags; heaps, error record and buffer ownership stay. */
QN_API void rtCopyContext(ASN1CTXT* pdest, ASN1CTXT* psrc);
/* Swaps the buffers of a and b and gives a the flags of b (one way, by design). */
QN_API void rtXchgContext(ASN1CTXT* pctxt1, ASN1CTXT* pctxt2);
QN_API void rtCtxtSetFlag(ASN1CTXT* pctxt, ASN1UINT mask);
QN_API void rtCtxtClearFlag(ASN1CTXT* pctxt, ASN1UINT mask);
/* Decoders point into the message instead of copying (ASN1FASTCOPY), or copy again. */
QN_API void rtSetFastCopy(ASN1CTXT* pctxt);
QN_API void rtSetCopyValues(ASN1CTXT* pctxt);
/* Makes pctxt use (and hold a reference to) pSrcCtxt's memHeap or msgMemHeap, releasing its
 * own; nothing when they are already the same. */
QN_API void rtCtxtSetMemHeap(ASN1CTXT* pctxt, ASN1CTXT* pSrcCtxt);
QN_API void rtCtxtSetMsgMemHeap(ASN1CTXT* pctxt, ASN1CTXT* pSrcCtxt);

/* The context's forward byte writer (used by the XML encoder): appends nocts bytes at the
 * buffer's byte position and advances it. A dynamic buffer (or a context with no buffer yet)
 * grows on msgMemHeap; a caller's static buffer that cannot hold them fails with -1 and is left
 * as it was. With a stream attached the bytes go to the stream instead (staged when it is
 * buffered). 0, -1, -12, -30 for null data, or the stream's status; all recorded. */
QN_API int rtWriteBytes(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t nocts);

/* Error record. rtErrSetData keeps the first status since the last reset, adds {module, line}
 * to the trace (at most 8 entries) and returns its status argument. */
QN_API int rtErrSetData(ASN1ErrInfo* pErrInfo, int status, const char* module, int lineno);
/* Parameters are malloc'ed copies filling the message's "%s" places in order; at most 5.
 * 1 when stored, 0 when refused. A tag shows as "[UNIVERSAL n]", "[APPLICATION n]", "[n]" or
 * "[PRIVATE n]" with the number's low 13 bits. */
QN_API int rtErrAddStrParm(ASN1ErrInfo* pErrInfo, const char* errprm_p);
QN_API int rtErrAddIntParm(ASN1ErrInfo* pErrInfo, int errParm);
QN_API int rtErrAddUIntParm(ASN1ErrInfo* pErrInfo, unsigned int errParm);
QN_API int rtErrAddTagParm(ASN1ErrInfo* pErrInfo, ASN1TagType errParm);
/* Frees the parameters and clears the status; the trace stays. */
QN_API void rtErrFreeParms(ASN1ErrInfo* pErrInfo);
/* Empties the record: parameters, status and trace. */
QN_API int rtErrReset(ASN1ErrInfo* pErrInfo);
/* Gives the destination the source's status (overwriting) and appends its parameters and trace
 * within the limits; returns the source's status. */
QN_API int rtErrCopyData(ASN1ErrInfo* pSrcErrInfo, ASN1ErrInfo* pDestErrInfo);
/* Writes the message of the recorded status into bufp, which must hold the longest message. */
QN_API char* rtErrFmtMsg(ASN1ErrInfo* pErrInfo, char* bufp);
/* The full report in memory from the context's heap (stack depth x 100 + 700 bytes; longer text
 * is cut); consumes the error record. Null when the heap has no memory. */
QN_API char* rtErrGetText(ASN1CTXT* pctxt);
/* The full report on standard output; consumes the error record. */
QN_API void rtErrPrint(ASN1ErrInfo* pErrInfo);
typedef int (*rtErrLogCallback)(const char* text, void* cbArg);
/* The report handed to cb piece by piece; consumes the error record. */
QN_API void rtErrLogUsingCB(ASN1ErrInfo* pErrInfo, rtErrLogCallback cb, void* cbArg);

/* Older forwarders on the context's error record. */
QN_API int xu_error(ASN1CTXT* pctxt, int status, const char* module, int lineno);
QN_API int xu_addErrParm(ASN1CTXT* pctxt, const char* errprm_p);
QN_API int xu_addIntErrParm(ASN1CTXT* pctxt, int errParm);
QN_API int xu_addUnsignedErrParm(ASN1CTXT* pctxt, unsigned int errParm);
QN_API int xu_addTagErrParm(ASN1CTXT* pctxt, ASN1TagType errParm);
QN_API void xu_freeErrParms(ASN1CTXT* pctxt);
QN_API void xu_perror(ASN1CTXT* pctxt);
QN_API void xu_log_error(ASN1CTXT* pctxt, rtErrLogCallback cb, void* cbArg);
QN_API char* xu_fmtErrMsg(ASN1CTXT* pctxt, char* bufp);

/* Diagnostics, off until switched on; process-wide. */
QN_API void rtSetDiag(int on);
QN_API void rtdiag(const char* fmtspec, ...) __attribute__((format(printf, 1, 2)));
QN_API void rtDiagHexDump(const ASN1OCTET* data, ASN1UINT numocts);

QN_END_C

#endif
