// Decodes hostile input as PKIXOCSP.OCSPResponse (checks in message_fuzzer.h).
#include <quillon/modules/PKIXOCSP.h>

#include "message_fuzzer.h"

QN_MESSAGE_FUZZER(OCSPResponse)
