/* The runtime has C linkage so that C programs can call it: this one includes the runtime's
 * headers as C and encodes and decodes an INTEGER. Exit status 0 on success. */
#include <quillon/asn1ber.h>
#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include <stdio.h>

int main(void) {
  ASN1CTXT ctxt;
  ASN1OCTET buf[16];
  ASN1INT value = -129;
  ASN1INT decoded = 0;
  int len;
  int ok = 1;

  if (rtInitContext(&ctxt, NULL) != 0) {
    fprintf(stderr, "consumer_c: rtInitContext failed\n");
    return 1;
  }
  xe_setp(&ctxt, buf, sizeof buf);
  len = xe_integer(&ctxt, &value, ASN1EXPL);
  /* -129 is 0xFF 0x7F in minimal two's complement. */
  ok = len == 4 && xe_getp(&ctxt)[2] == 0xFF && xe_getp(&ctxt)[3] == 0x7F;
  if (ok) {
    ASN1CTXT dctxt;
    ok = rtInitContext(&dctxt, NULL) == 0 &&
         xd_setp(&dctxt, xe_getp(&ctxt), len, NULL, NULL) == 0 &&
         xd_integer(&dctxt, &decoded, ASN1EXPL, 0) == 0 && decoded == value;
    rtFreeContext(&dctxt);
  }
  rtFreeContext(&ctxt);
  printf("consumer_c: %s\n", ok ? "all checks passed" : "FAILED");
  return ok ? 0 : 1;
}
