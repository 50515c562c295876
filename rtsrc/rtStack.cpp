/* A fixed-depth pointer stack; its depth bounds the nesting the runtime follows. */
#include <stdlib.h>
#include <string.h>

#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

void rtStackInit(_Asn1RTStack* pStack) {
  if (pStack) memset(pStack, 0, sizeof(_Asn1RTStack));
}

_Asn1RTStack* rtStackCreate(void) {
  auto* pStack = static_cast<_Asn1RTStack*>(malloc(sizeof(_Asn1RTStack)));
  rtStackInit(pStack);
  return pStack;
}

_Asn1RTStack* rtStackCreateEx(ASN1CTXT* pctxt) {
  if (!pctxt) return nullptr;
  auto* pStack = static_cast<_Asn1RTStack*>(rtMemHeapAlloc(&pctxt->memHeap, sizeof(_Asn1RTStack)));
  rtStackInit(pStack);
  return pStack;
}

int rtStackPush(_Asn1RTStack* pStack, void* pData) {
  if (!pStack || pStack->count < 0 || pStack->count >= ASN_K_MAXSTACK) return ASN_E_TOODEEP;
  pStack->slots[pStack->count++] = pData;
  return 0;
}

void* rtStackPop(_Asn1RTStack* pStack) {
  if (!pStack || pStack->count < 1) return nullptr;
  return pStack->slots[--pStack->count];
}
