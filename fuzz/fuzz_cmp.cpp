// Decodes hostile input as PKIXCMP.PKIMessage (checks in message_fuzzer.h).
#include <quillon/modules/PKIXCMP.h>

#include "message_fuzzer.h"

QN_MESSAGE_FUZZER(PKIMessage)
