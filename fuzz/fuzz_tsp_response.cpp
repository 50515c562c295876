// Decodes hostile input as PKIXTSP.TimeStampResp (checks in message_fuzzer.h).
#include <quillon/modules/PKIXTSP.h>

#include "message_fuzzer.h"

QN_MESSAGE_FUZZER(TimeStampResp)
