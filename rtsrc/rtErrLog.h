/* Private to the runtime: how a runtime source records an error with its own location. */
#ifndef QUILLON_RTERRLOG_H
#define QUILLON_RTERRLOG_H

#include <quillon/rtContext.h>

#ifndef QN_MODULE
#error "every runtime source is compiled with QN_MODULE naming it (set by the build)"
#endif

/* Records stat at this source and line in the context's error record; evaluates to stat. */
#define LOG_RTERR(pctxt, stat) rtErrSetData(&(pctxt)->errInfo, (stat), QN_MODULE, __LINE__)

#endif
