// Decodes hostile input as CryptographicMessageSyntax.ContentInfo (checks in message_fuzzer.h).
#include <quillon/modules/CryptographicMessageSyntax.h>

#include "message_fuzzer.h"

QN_MESSAGE_FUZZER(ContentInfo)
