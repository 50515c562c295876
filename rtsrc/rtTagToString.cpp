/* A tag as text, the way error reports and dumps show it. */
#include <stdio.h>

#include <quillon/rtUtil.h>

char* rtTagToString(ASN1TagType tag, char* buf, size_t bufsiz) {
  if (!buf || bufsiz == 0) return buf;
  unsigned number = tag & TM_IDCODE_MASK;
  switch (tag & TM_CLASS_MASK) {
    case TM_UNIV:
      snprintf(buf, bufsiz, "[UNIVERSAL %u]", number);
      break;
    case TM_APPL:
      snprintf(buf, bufsiz, "[APPLICATION %u]", number);
      break;
    case TM_CTXT:
      snprintf(buf, bufsiz, "[%u]", number);
      break;
    default:
      snprintf(buf, bufsiz, "[PRIVATE %u]", number);
      break;
  }
  return buf;
}
