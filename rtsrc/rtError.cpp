/* The error record: status, parameters and trace; message texts, reports and the xu_ forwarders. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>
#include <quillon/rtUtil.h>

namespace {

/* Indexed by -(status + 1). */
const char* const kStatusText[ASN_K_MAXSTATUS] = {
    "Encode buffer overflow",
    "Unexpected end of buffer on decode",
    "Unexpected tag encountered: expected = %s, parsed = %s",
    "Invalid object identifier",
    "Invalid field length detected",
    "Enumerated value %s not in defined set",
    "Duplicate element in SET",
    "Missing required element in SET",
    "Element with tag %s not part of SET",
    "Max elements defined for SEQUENCE field exceeded",
    "Element with tag %s is an invalid option in choice",
    "No dynamic memory available",
    "Invalid string type",
    "Invalid hex string",
    "Invalid binary string",
    "Invalid real value",
    "Max items in sized BIT or OCTET STRING field exceeded",
    "Invalid value specification",
    "No definition found for referenced defined value",
    "No definition found for referenced defined type",
    "Invalid tag value",
    "Nesting level too deep",
    "Value constraint violation: field %s, value %s",
    "Value range error: lower bound is greater than upper",
    "Unexpected end of file detected",
    "Invalid UTF-8 character at index %d",
    "List error: concurrent modification attempt while iterating",
    "List error: illegal state for attempted operation",
    "Array index out of bounds",
    "Invalid parameter passed to function or method",
    "Invalid time string format",
    "Context is not initialized",
    "ASN.1 value will not fit in target variable",
    "Character is not within the defined character set",
    "Invalid XML state for attempted operation",
    "Error condition returned from XML parser:\n%s",
    "SEQUENCE elements not in correct order",
    "Invalid index for table constraint identifier",
    "Invalid value for relational table constraint fixed type field",
    "File not found",
    "File read error",
    "File write error",
    "Invalid Base64 string",
    "Socket error",
    "XML interface library not found",
    "Invalid XML interface library",
};

/* Tag parameters show the number as a 13-bit field, the way tags have always been reported. */
constexpr ASN1TagType kTagParmMask = TM_CLASS_MASK | 0x1FFFu;
constexpr size_t kTagTextSize = 32;

const char* statusTemplate(int status) {
  if (status >= 0) return "normal completion status";
  if (-(status + 1) > ASN_K_MAXSTATUS - 1) return "unrecognized completion status";
  return kStatusText[-(status + 1)];
}

/* Output sinks: each takes (text, length). Reports are built once against whichever fits. */
struct BufSink {
  char* out;
  size_t cap; /* room including the terminator */
  size_t len = 0;
  void operator()(const char* s, size_t n) {
    if (len < cap) {
      size_t room = cap - 1 - len;
      memcpy(out + len, s, n < room ? n : room);
    }
    len += n;
  }
  void terminate() {
    if (cap) out[len < cap ? len : cap - 1] = '\0';
  }
};

struct CountSink {
  size_t len = 0;
  void operator()(const char*, size_t n) { len += n; }
};

struct FileSink {
  FILE* fp;
  void operator()(const char* s, size_t n) { fwrite(s, 1, n, fp); }
};

template <class Sink>
void put(Sink& sink, const char* s) {
  sink(s, strlen(s));
}

template <class Sink>
void putInt(Sink& sink, int value) {
  char text[16];
  int n = snprintf(text, sizeof text, "%d", value);
  sink(text, static_cast<size_t>(n));
}

/* Parameters fill the "%s" places in the order they were added; a missing or null one shows
 * as "?" without using up a parameter. Nothing else in a template is interpreted. */
template <class Sink>
void putMessage(Sink& sink, const ASN1ErrInfo* pErrInfo) {
  const char* run = statusTemplate(pErrInfo->status);
  int used = 0;
  for (const char* p = run; *p; ++p) {
    if (p[0] != '%' || p[1] != 's') continue;
    sink(run, static_cast<size_t>(p - run));
    const char* parm = used < pErrInfo->parmcnt ? pErrInfo->parms[used] : nullptr;
    if (parm) {
      put(sink, parm);
      ++used;
    } else {
      put(sink, "?");
    }
    run = ++p + 1;
  }
  put(sink, run);
}

template <class Sink>
void putStatusLine(Sink& sink, const ASN1ErrInfo* pErrInfo) {
  put(sink, "ASN.1 ERROR: Status ");
  putInt(sink, pErrInfo->status);
}

template <class Sink>
void putStackEntry(Sink& sink, const ASN1ErrLocn& entry) {
  put(sink, "  Module: ");
  put(sink, entry.module ? entry.module : "(null)");
  put(sink, ", Line ");
  putInt(sink, entry.lineno);
  put(sink, "\n");
}

/* The full report, newest trace entry first; "Stack trace:" is followed directly by the first
 * entry, which is how the report has always looked. Pops the trace as it goes. */
template <class Sink>
void putReport(Sink& sink, ASN1ErrInfo* pErrInfo) {
  putStatusLine(sink, pErrInfo);
  put(sink, "\n");
  putMessage(sink, pErrInfo);
  put(sink, "\nStack trace:");
  while (pErrInfo->stkx > 0) putStackEntry(sink, pErrInfo->stack[--pErrInfo->stkx]);
}

/* Renders with write(sink) into malloc'ed memory sized by a first counting pass. */
template <class Writer>
char* renderToMalloc(Writer write) {
  CountSink counter;
  write(counter);
  char* text = static_cast<char*>(malloc(counter.len + 1));
  if (!text) return nullptr;
  BufSink sink{text, counter.len + 1};
  write(sink);
  sink.terminate();
  return text;
}

template <class Writer>
void sendToCallback(rtErrLogCallback cb, void* cbArg, Writer write) {
  char* text = renderToMalloc(write);
  if (!text) return;
  cb(text, cbArg);
  free(text);
}

}  // namespace

int rtErrSetData(ASN1ErrInfo* pErrInfo, int status, const char* module, int lineno) {
  if (!pErrInfo) return status;
  if (pErrInfo->status == 0) pErrInfo->status = status;
  if (pErrInfo->stkx >= 0 && pErrInfo->stkx < ASN_K_MAXERRSTK) {
    pErrInfo->stack[pErrInfo->stkx].module = module;
    pErrInfo->stack[pErrInfo->stkx].lineno = lineno;
    pErrInfo->stkx++;
  }
  return status;
}

int rtErrAddStrParm(ASN1ErrInfo* pErrInfo, const char* errprm_p) {
  if (!pErrInfo || !errprm_p || pErrInfo->parmcnt >= ASN_K_MAXERRP) return 0;
  size_t len = strlen(errprm_p);
  char* copy = static_cast<char*>(malloc(len + 1));
  if (!copy) return 0;
  memcpy(copy, errprm_p, len + 1);
  pErrInfo->parms[pErrInfo->parmcnt++] = copy;
  return 1;
}

int rtErrAddIntParm(ASN1ErrInfo* pErrInfo, int errParm) {
  char text[16];
  snprintf(text, sizeof text, "%d", errParm);
  return rtErrAddStrParm(pErrInfo, text);
}

int rtErrAddUIntParm(ASN1ErrInfo* pErrInfo, unsigned int errParm) {
  char text[16];
  snprintf(text, sizeof text, "%u", errParm);
  return rtErrAddStrParm(pErrInfo, text);
}

int rtErrAddTagParm(ASN1ErrInfo* pErrInfo, ASN1TagType errParm) {
  char text[kTagTextSize];
  rtTagToString(errParm & kTagParmMask, text, sizeof text);
  return rtErrAddStrParm(pErrInfo, text);
}

void rtErrFreeParms(ASN1ErrInfo* pErrInfo) {
  if (!pErrInfo) return;
  for (int i = 0; i < pErrInfo->parmcnt && i < ASN_K_MAXERRP; i++) {
    free(pErrInfo->parms[i]);
    pErrInfo->parms[i] = nullptr;
  }
  pErrInfo->parmcnt = 0;
  pErrInfo->status = 0;
}

int rtErrReset(ASN1ErrInfo* pErrInfo) {
  if (!pErrInfo) return 0;
  rtErrFreeParms(pErrInfo);
  pErrInfo->stkx = 0;
  return 0;
}

int rtErrCopyData(ASN1ErrInfo* pSrcErrInfo, ASN1ErrInfo* pDestErrInfo) {
  if (!pSrcErrInfo || !pDestErrInfo) return pSrcErrInfo ? pSrcErrInfo->status : ASN_E_INVPARAM;
  pDestErrInfo->status = pSrcErrInfo->status;
  for (int i = 0; i < pSrcErrInfo->parmcnt; i++) {
    rtErrAddStrParm(pDestErrInfo, pSrcErrInfo->parms[i]);
  }
  for (int i = 0; i < pSrcErrInfo->stkx && pDestErrInfo->stkx < ASN_K_MAXERRSTK; i++) {
    pDestErrInfo->stack[pDestErrInfo->stkx++] = pSrcErrInfo->stack[i];
  }
  return pSrcErrInfo->status;
}

char* rtErrFmtMsg(ASN1ErrInfo* pErrInfo, char* bufp) {
  if (!pErrInfo || !bufp) return bufp;
  BufSink sink{bufp, SIZE_MAX};
  putMessage(sink, pErrInfo);
  sink.terminate();
  return bufp;
}

char* rtErrGetText(ASN1CTXT* pctxt) {
  if (!pctxt) return nullptr;
  ASN1ErrInfo* pErrInfo = &pctxt->errInfo;
  size_t size = static_cast<size_t>(pErrInfo->stkx) * 100 + 700;
  char* text = static_cast<char*>(rtMemHeapAlloc(&pctxt->memHeap, size));
  if (!text) return nullptr;
  /* Long parameters or module names are cut at the end of the report rather than overrun it. */
  BufSink sink{text, size};
  putReport(sink, pErrInfo);
  sink.terminate();
  rtErrFreeParms(pErrInfo);
  return text;
}

void rtErrPrint(ASN1ErrInfo* pErrInfo) {
  if (!pErrInfo) return;
  FileSink sink{stdout};
  putReport(sink, pErrInfo);
  fflush(stdout);
  rtErrFreeParms(pErrInfo);
}

void rtErrLogUsingCB(ASN1ErrInfo* pErrInfo, rtErrLogCallback cb, void* cbArg) {
  if (!pErrInfo) return;
  if (cb) {
    sendToCallback(cb, cbArg, [&](auto& sink) { putStatusLine(sink, pErrInfo); });
    sendToCallback(cb, cbArg, [&](auto& sink) { putMessage(sink, pErrInfo); });
    while (pErrInfo->stkx > 0) {
      const ASN1ErrLocn& entry = pErrInfo->stack[--pErrInfo->stkx];
      sendToCallback(cb, cbArg, [&](auto& sink) { putStackEntry(sink, entry); });
    }
  }
  pErrInfo->stkx = 0;
  rtErrFreeParms(pErrInfo);
}

/* ---- The older forwarders on the context's record ---------------------------------------- */

int xu_error(ASN1CTXT* pctxt, int status, const char* module, int lineno) {
  if (!pctxt) return status;
  return rtErrSetData(&pctxt->errInfo, status, module, lineno);
}

int xu_addErrParm(ASN1CTXT* pctxt, const char* errprm_p) {
  return pctxt ? rtErrAddStrParm(&pctxt->errInfo, errprm_p) : 0;
}

int xu_addIntErrParm(ASN1CTXT* pctxt, int errParm) {
  return pctxt ? rtErrAddIntParm(&pctxt->errInfo, errParm) : 0;
}

int xu_addUnsignedErrParm(ASN1CTXT* pctxt, unsigned int errParm) {
  return pctxt ? rtErrAddUIntParm(&pctxt->errInfo, errParm) : 0;
}

int xu_addTagErrParm(ASN1CTXT* pctxt, ASN1TagType errParm) {
  return pctxt ? rtErrAddTagParm(&pctxt->errInfo, errParm) : 0;
}

void xu_freeErrParms(ASN1CTXT* pctxt) {
  if (pctxt) rtErrFreeParms(&pctxt->errInfo);
}

void xu_perror(ASN1CTXT* pctxt) {
  if (pctxt) rtErrPrint(&pctxt->errInfo);
}

void xu_log_error(ASN1CTXT* pctxt, rtErrLogCallback cb, void* cbArg) {
  if (pctxt) rtErrLogUsingCB(&pctxt->errInfo, cb, cbArg);
}

char* xu_fmtErrMsg(ASN1CTXT* pctxt, char* bufp) {
  return pctxt ? rtErrFmtMsg(&pctxt->errInfo, bufp) : bufp;
}
