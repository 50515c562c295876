// The codec context: initialisation and release, attached buffers, sub-contexts, copying and
// exchanging buffers, flags, and sharing heaps between contexts.
#include <gtest/gtest.h>

#include <quillon/rtContext.h>
#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include <string.h>

#include "../../rtsrc/rtMemHeapImpl.h"
#include "heap_hooks.h"

namespace {

int g_closeCalls = 0;
void* g_closedDevice = nullptr;

int countingClose(void* device) {
  g_closeCalls++;
  g_closedDevice = device;
  return 0;
}

}  // namespace

TEST(Context, InitialisationSharesOneHeapTwice) {
  HookScope hooks;
  int allocCtx = 0;
  ASN1CTXT ctxt;
  memset(&ctxt, 0xCC, sizeof ctxt);  // every field must be set, not inherited
  ASSERT_EQ(rtInitContext(&ctxt, &allocCtx), 0);
  EXPECT_EQ(ctxt.key, ASN1_CTXT_KEY);
  ASSERT_NE(ctxt.memHeap, nullptr);
  EXPECT_EQ(ctxt.msgMemHeap, ctxt.memHeap);
  EXPECT_EQ(ctxt.memHeap->refCount, 2u);
  EXPECT_EQ(ctxt.memHeap->memAllocCtx, &allocCtx);
  EXPECT_EQ(ctxt.pMemAllocCtx, &allocCtx);
  EXPECT_EQ(ctxt.buffer.data, nullptr);
  EXPECT_EQ(ctxt.errInfo.stkx, 0);
  EXPECT_EQ(ctxt.fieldList.pctxt, &ctxt);
  EXPECT_EQ(ctxt.reserved[ASN_K_CTXTRESERVED - 1], nullptr);

  // The caller's allocation context reaches every hook call made for this context.
  ASSERT_NE(rtMemHeapAlloc(&ctxt.memHeap, 10), nullptr);
  for (void* seen : hooks.log().allocCtxSeen) EXPECT_EQ(seen, &allocCtx);

  rtFreeContext(&ctxt);
  EXPECT_EQ(ctxt.key, 0u);
  EXPECT_EQ(ctxt.memHeap, nullptr);
  EXPECT_EQ(ctxt.msgMemHeap, nullptr);
  EXPECT_EQ(hooks.log().outstanding, 0) << "both references released, heap gone";
  rtFreeContext(&ctxt);  // a second release does nothing

  hooks.log().failAfter = 0;
  EXPECT_EQ(rtInitContext(&ctxt, nullptr), ASN_E_NOMEM);
  EXPECT_EQ(ctxt.key, 0u) << "a context whose heap failed is not initialised";
}

TEST(Context, AttachingBuffers) {
  ASN1CTXT ctxt{};
  ASN1OCTET mine[32];
  EXPECT_EQ(rtInitContextBuffer(&ctxt, mine, sizeof mine), ASN_E_NOTINIT);
  EXPECT_EQ(ctxt.buffer.data, nullptr) << "an uninitialised context is left alone";

  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  ASSERT_EQ(rtInitContextBuffer(&ctxt, mine, sizeof mine), 0);
  EXPECT_EQ(ctxt.buffer.data, mine);
  EXPECT_EQ(ctxt.buffer.size, 32u);
  EXPECT_EQ(ctxt.buffer.dynamic, 0);
  EXPECT_EQ(ctxt.buffer.byteIndex, 0u);
  EXPECT_EQ(ctxt.buffer.bitOffset, 8u);

  ctxt.buffer.byteIndex = 5;
  ASSERT_EQ(rtInitContextBuffer(&ctxt, nullptr, 0), 0);
  EXPECT_EQ(ctxt.buffer.size, 16384u);
  EXPECT_EQ(ctxt.buffer.dynamic, 1);
  EXPECT_EQ(ctxt.buffer.byteIndex, 0u);
  EXPECT_EQ(ctxt.buffer.bitOffset, 8u);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.msgMemHeap, ctxt.buffer.data), 1);
  ctxt.buffer.data[16383] = 1;

  ASSERT_EQ(rtInitContextBuffer(&ctxt, nullptr, 100), 0);
  EXPECT_EQ(ctxt.buffer.size, 100u);
  EXPECT_EQ(rtInitContextBuffer(&ctxt, nullptr, -1), ASN_E_INVPARAM);
  EXPECT_EQ(ctxt.errInfo.status, ASN_E_INVPARAM);
  rtFreeContext(&ctxt);

  HookScope hooks;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  hooks.log().failAfter = 0;
  EXPECT_EQ(rtInitContextBuffer(&ctxt, nullptr, 0), ASN_E_NOMEM);
  EXPECT_EQ(ctxt.errInfo.status, ASN_E_NOMEM);
  hooks.log().failAfter = -1;
  rtFreeContext(&ctxt);
  EXPECT_EQ(hooks.log().outstanding, 0);
}

TEST(Context, ReleaseFreesOrKeepsTheBufferAndClosesTheStream) {
  // A second context shares the first one's heaps, so what the second leaves behind can be seen.
  ASN1CTXT owner, user;
  ASSERT_EQ(rtInitContext(&owner, nullptr), 0);
  ASSERT_EQ(rtInitContext(&user, nullptr), 0);
  rtCtxtSetMemHeap(&user, &owner);
  rtCtxtSetMsgMemHeap(&user, &owner);
  EXPECT_EQ(owner.memHeap->refCount, 4u);

  ASSERT_EQ(rtInitContextBuffer(&user, nullptr, 64), 0);
  ASN1OCTET* freed = user.buffer.data;
  int device = 0;
  auto* stream = static_cast<OSRTSTREAM*>(rtMemHeapAllocZ(&user.memHeap, sizeof(OSRTSTREAM)));
  stream->close = countingClose;
  stream->device = &device;
  user.pStream = stream;
  rtErrAddStrParm(&user.errInfo, "parameter");  // malloc'ed: LeakSanitizer watches it
  rtSListAppend(&user.fieldList, &device);
  rtFreeContext(&user);
  EXPECT_EQ(g_closeCalls, 1);
  EXPECT_EQ(g_closedDevice, &device);
  EXPECT_EQ(rtMemHeapCheckPtr(&owner.memHeap, stream), 0);
  EXPECT_EQ(rtMemHeapCheckPtr(&owner.msgMemHeap, freed), 0);
  EXPECT_EQ(owner.memHeap->refCount, 2u);

  ASSERT_EQ(rtInitContext(&user, nullptr), 0);
  rtCtxtSetMsgMemHeap(&user, &owner);
  ASSERT_EQ(rtInitContextBuffer(&user, nullptr, 64), 0);
  ASN1OCTET* kept = user.buffer.data;
  rtCtxtSetFlag(&user, ASN1SAVEBUF);
  rtFreeContext(&user);
  rtMemHeapFreeAll(&owner.msgMemHeap);
  EXPECT_EQ(rtMemHeapCheckPtr(&owner.msgMemHeap, kept), 1) << "saved from bulk release";
  rtFreeContext(&owner);
}

TEST(Context, NewContextIsReturnedToFree) {
  ASN1CTXT* ctxt = rtNewContext();
  ASSERT_NE(ctxt, nullptr);
  EXPECT_EQ(ctxt->key, ASN1_CTXT_KEY);
  EXPECT_EQ(ctxt->flags & ASN1DYNCTXT, ASN1DYNCTXT);
  EXPECT_EQ(ctxt->memHeap->refCount, 2u);
  ASSERT_EQ(rtInitContextBuffer(ctxt, nullptr, 0), 0);
  rtFreeContext(ctxt);  // LeakSanitizer reports the record if it is not freed
}

TEST(Context, SubContextGetsAHeapOfItsOwn) {
  int allocCtx = 0;
  ASN1CTXT parent, sub;
  ASSERT_EQ(rtInitContext(&parent, &allocCtx), 0);
  parent.flags = ASN1FASTCOPY | ASN1CANXER;
  parent.buffer.state = 0x5A;
  memset(&sub, 0xCC, sizeof sub);
  ASSERT_EQ(rtInitSubContext(&sub, &parent), 0);
  EXPECT_EQ(sub.key, ASN1_CTXT_KEY);
  EXPECT_EQ(sub.memHeap, nullptr);
  EXPECT_EQ(sub.msgMemHeap, nullptr);
  EXPECT_EQ(sub.pMemAllocCtx, &allocCtx);
  EXPECT_EQ(sub.flags, parent.flags);
  EXPECT_EQ(sub.buffer.state, 0x5A);
  EXPECT_EQ(sub.buffer.dynamic, 1);
  EXPECT_EQ(sub.buffer.bitOffset, 8u);

  void* mem = rtMemHeapAlloc(&sub.memHeap, 10);
  ASSERT_NE(sub.memHeap, nullptr);
  EXPECT_NE(sub.memHeap, parent.memHeap);
  EXPECT_EQ(rtMemHeapCheckPtr(&parent.memHeap, mem), 0);
  rtFreeContext(&sub);
  rtFreeContext(&parent);
}

TEST(Context, CopyAndExchangeMoveBufferDescriptors) {
  ASN1CTXT a, b;
  ASSERT_EQ(rtInitContext(&a, nullptr), 0);
  ASSERT_EQ(rtInitContext(&b, nullptr), 0);
  ASN1OCTET bufA[4], bufB[8];
  rtInitContextBuffer(&a, bufA, sizeof bufA);
  rtInitContextBuffer(&b, bufB, sizeof bufB);
  a.buffer.byteIndex = 1;
  b.buffer.byteIndex = 2;
  b.buffer.bitOffset = 3;
  b.buffer.state = 9;
  a.flags = ASN1FASTCOPY;
  b.flags = ASN1CANXER;
  OSMemHeap* heapA = a.memHeap;

  rtXchgContext(&a, &b);
  EXPECT_EQ(a.buffer.data, bufB);
  EXPECT_EQ(a.buffer.byteIndex, 2u);
  EXPECT_EQ(a.buffer.state, 9);
  EXPECT_EQ(b.buffer.data, bufA);
  // Flags go one way only: both now carry b's.
  EXPECT_EQ(a.flags, ASN1CANXER);
  EXPECT_EQ(b.flags, ASN1CANXER);
  EXPECT_EQ(a.memHeap, heapA);

  rtErrSetData(&b.errInfo, ASN_E_INVLEN, "m", 1);
  b.flags = ASN1XMLFRAG;
  rtCopyContext(&a, &b);
  EXPECT_EQ(a.buffer.data, bufA);
  EXPECT_EQ(a.buffer.byteIndex, 1u);
  EXPECT_EQ(a.flags, ASN1XMLFRAG);
  EXPECT_EQ(a.errInfo.status, 0) << "the error record stays";
  EXPECT_EQ(a.memHeap, heapA) << "heaps stay";
  EXPECT_EQ(a.key, ASN1_CTXT_KEY);
  rtFreeContext(&a);
  rtFreeContext(&b);
}

TEST(Context, HeapSharing) {
  ASN1CTXT a, b;
  ASSERT_EQ(rtInitContext(&a, nullptr), 0);
  ASSERT_EQ(rtInitContext(&b, nullptr), 0);
  OSMemHeap* heapA = a.memHeap;
  rtCtxtSetMemHeap(&b, &a);
  EXPECT_EQ(b.memHeap, heapA);
  EXPECT_NE(b.msgMemHeap, heapA);
  EXPECT_EQ(heapA->refCount, 3u);
  EXPECT_EQ(b.msgMemHeap->refCount, 1u) << "b's own heap lost one of its two holders";
  rtCtxtSetMemHeap(&b, &a);
  EXPECT_EQ(heapA->refCount, 3u) << "sharing the same heap again changes nothing";
  rtCtxtSetMsgMemHeap(&b, &a);
  EXPECT_EQ(heapA->refCount, 4u);

  // The heap outlives the context that created it while another still holds it.
  void* mem = rtMemHeapAlloc(&a.memHeap, 32);
  rtFreeContext(&a);
  EXPECT_EQ(heapA->refCount, 2u);
  EXPECT_EQ(rtMemHeapCheckPtr(&b.memHeap, mem), 1);
  rtFreeContext(&b);
}
