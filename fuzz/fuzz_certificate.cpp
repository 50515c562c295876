// Decodes hostile input as PKIX1Explicit88.Certificate (checks in message_fuzzer.h).
#include <quillon/modules/PKIX1Explicit88.h>

#include "message_fuzzer.h"

QN_MESSAGE_FUZZER(Certificate)
