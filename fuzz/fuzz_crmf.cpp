// Decodes hostile input as PKIXCRMF.CertReqMessages (checks in message_fuzzer.h).
#include <quillon/modules/PKIXCRMF.h>

#include "message_fuzzer.h"

QN_MESSAGE_FUZZER(CertReqMessages)
