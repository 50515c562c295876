// The doubly linked list (positions, the ends a null anchor means, lookups, removal, freeing,
// arrays), the singly linked list over a heap or malloc, and the 32-entry stack.
#include <gtest/gtest.h>

#include <quillon/rtContext.h>
#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include <string>
#include <vector>

#include "heap_hooks.h"

namespace {

// Walks the list both ways and checks count, head/tail and back links along the way.
std::vector<int> contents(const _Asn1RTDList& list) {
  std::vector<int> forward;
  const _Asn1RTDListNode* prev = nullptr;
  for (const _Asn1RTDListNode* n = list.head; n; prev = n, n = n->next) {
    EXPECT_EQ(n->prev, prev);
    forward.push_back(*static_cast<int*>(n->data));
  }
  EXPECT_EQ(list.tail, prev);
  EXPECT_EQ(list.count, forward.size());
  return forward;
}

class DListTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(rtInitContext(&ctxt_, nullptr), 0);
    rtDListInit(&list_);
    for (int i = 0; i < 10; i++) v_[i] = i;
  }
  void TearDown() override { rtFreeContext(&ctxt_); }
  ASN1CTXT ctxt_;
  _Asn1RTDList list_;
  int v_[10];
};

}  // namespace

TEST_F(DListTest, InsertionPositions) {
  rtDListAppend(&ctxt_, &list_, &v_[1]);
  rtDListAppend(&ctxt_, &list_, &v_[3]);
  EXPECT_EQ(contents(list_), (std::vector<int>{1, 3}));
  EXPECT_NE(rtDListInsert(&ctxt_, &list_, 0, &v_[0]), nullptr);
  EXPECT_NE(rtDListInsert(&ctxt_, &list_, 2, &v_[2]), nullptr);
  EXPECT_NE(rtDListInsert(&ctxt_, &list_, 4, &v_[4]), nullptr);
  EXPECT_EQ(contents(list_), (std::vector<int>{0, 1, 2, 3, 4}));
  EXPECT_EQ(rtDListInsert(&ctxt_, &list_, 6, &v_[9]), nullptr) << "past the end";
  EXPECT_EQ(list_.count, 5u);

  // A null anchor means the tail for Before and the head for After.
  rtDListInsertBefore(&ctxt_, &list_, nullptr, &v_[5]);
  rtDListInsertAfter(&ctxt_, &list_, nullptr, &v_[6]);
  EXPECT_EQ(contents(list_), (std::vector<int>{6, 0, 1, 2, 3, 4, 5}));
  rtDListInsertBefore(&ctxt_, &list_, list_.head, &v_[7]);
  rtDListInsertBefore(&ctxt_, &list_, list_.tail, &v_[8]);
  rtDListInsertAfter(&ctxt_, &list_, list_.tail, &v_[9]);
  rtDListInsertAfter(&ctxt_, &list_, list_.head, &v_[9]);
  EXPECT_EQ(contents(list_), (std::vector<int>{7, 9, 6, 0, 1, 2, 3, 4, 8, 5, 9}));
}

TEST_F(DListTest, LookupsAndRemoval) {
  for (int i = 0; i < 5; i++) rtDListAppend(&ctxt_, &list_, &v_[i]);
  EXPECT_EQ(rtDListFindByIndex(&list_, 3)->data, &v_[3]);
  EXPECT_EQ(rtDListFindByIndex(&list_, 5), nullptr);
  EXPECT_EQ(rtDListFindByIndex(&list_, -4), list_.head) << "negative indices land on the head";
  EXPECT_EQ(rtDListFindByData(&list_, &v_[2]), list_.head->next->next);
  EXPECT_EQ(rtDListFindByData(&list_, &v_[7]), nullptr);
  EXPECT_EQ(rtDListFindIndexByData(&list_, &v_[4]), 4);
  EXPECT_EQ(rtDListFindIndexByData(&list_, &v_[7]), -1);

  _Asn1RTDListNode* head = list_.head;
  rtDListRemove(&list_, head);
  rtDListRemove(&list_, list_.tail);
  rtDListRemove(&list_, rtDListFindByData(&list_, &v_[2]));
  EXPECT_EQ(contents(list_), (std::vector<int>{1, 3}));
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, head), 1) << "removal does not free the node";
  rtDListRemove(&list_, list_.head);
  rtDListRemove(&list_, list_.head);
  EXPECT_EQ(contents(list_), std::vector<int>{});
  EXPECT_EQ(list_.head, nullptr);
}

TEST_F(DListTest, FreeingNodesAndElements) {
  // One element allocated apart, one together with its node.
  int* apart = static_cast<int*>(rtMemHeapAlloc(&ctxt_.memHeap, sizeof(int)));
  *apart = 1;
  auto* joint = static_cast<ASN1OCTET*>(
      rtMemHeapAlloc(&ctxt_.memHeap, sizeof(_Asn1RTDListNode) + sizeof(int)));
  int* together = reinterpret_cast<int*>(joint + sizeof(_Asn1RTDListNode));
  *together = 2;
  rtDListAppend(&ctxt_, &list_, apart);
  _Asn1RTDListNode* node = rtDListAppendNode(&ctxt_, &list_, together);
  EXPECT_EQ(static_cast<void*>(node), static_cast<void*>(joint));
  EXPECT_EQ(contents(list_), (std::vector<int>{1, 2}));
  EXPECT_EQ(rtDListAppendNode(&ctxt_, &list_, reinterpret_cast<void*>(sizeof(_Asn1RTDListNode))),
            nullptr);
  EXPECT_EQ(list_.count, 2u);

  _Asn1RTDListNode* first = list_.head;
  rtDListFreeAll(&ctxt_, &list_);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, apart), 0);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, first), 0);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, joint), 0) << "freed once, as the node";
  EXPECT_EQ(list_.count, 0u);
  EXPECT_EQ(list_.head, nullptr);
  EXPECT_EQ(list_.tail, nullptr);

  // FreeNodes leaves the elements alone.
  int* elem = static_cast<int*>(rtMemHeapAlloc(&ctxt_.memHeap, sizeof(int)));
  rtDListAppend(&ctxt_, &list_, elem);
  rtDListFreeNodes(&ctxt_, &list_);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, elem), 1);
  EXPECT_EQ(list_.count, 0u);
}

TEST_F(DListTest, ArraysInAndOut) {
  int src[4] = {10, 11, 12, 13};
  EXPECT_EQ(rtDListAppendArray(&ctxt_, &list_, src, 4, sizeof(int)), 0);
  EXPECT_EQ(list_.tail->data, &src[3]) << "pointers into the array, no copies";

  // The copying variant reads its count as a byte length.
  _Asn1RTDList copies;
  rtDListInit(&copies);
  EXPECT_EQ(rtDListAppendArrayCopy(&ctxt_, &copies, src, sizeof src, sizeof(int)), 0);
  EXPECT_EQ(contents(copies), (std::vector<int>{10, 11, 12, 13}));
  EXPECT_NE(copies.head->data, &src[0]);
  EXPECT_EQ(rtDListAppendArrayCopy(&ctxt_, &copies, src, 4, sizeof(int)), 0);
  EXPECT_EQ(copies.count, 5u) << "four bytes are one int";
  EXPECT_EQ(rtDListAppendArrayCopy(&ctxt_, &copies, src, 4, 0), ASN_E_INVPARAM);

  // Out: the array grows when the given capacity is too small, else the caller's is used.
  void* array = nullptr;
  ASN1UINT capacity = 2;
  EXPECT_EQ(rtDListToArray(&ctxt_, &copies, &array, &capacity, sizeof(int)), 5);
  EXPECT_EQ(capacity, 5u);
  ASSERT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, array), 1);
  EXPECT_EQ(static_cast<int*>(array)[3], 13);
  EXPECT_EQ(static_cast<int*>(array)[4], 10);
  int mine[5] = {};
  void* mineArray = mine;
  EXPECT_EQ(rtDListToArray(&ctxt_, &list_, &mineArray, nullptr, sizeof(int)), 4);
  EXPECT_EQ(mineArray, static_cast<void*>(mine));
  EXPECT_EQ(mine[2], 12);
  EXPECT_EQ(mine[4], 0);
  capacity = 8;
  EXPECT_EQ(rtDListToArray(&ctxt_, &list_, &mineArray, &capacity, sizeof(int)), 4);
  EXPECT_EQ(mineArray, static_cast<void*>(mine)) << "enough capacity: no new array";
  void* none = nullptr;
  EXPECT_EQ(rtDListToArray(&ctxt_, &list_, &none, nullptr, sizeof(int)), ASN_E_INVPARAM);
}

TEST(DList, AllocationFailureLeavesTheListUnchanged) {
  HookScope hooks;
  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);  // no block yet: the first node needs one
  _Asn1RTDList list;
  rtDListInit(&list);
  int v = 0;
  hooks.log().failAfter = 0;
  EXPECT_EQ(rtDListAppend(&ctxt, &list, &v), nullptr);
  EXPECT_EQ(rtDListInsert(&ctxt, &list, 0, &v), nullptr);
  EXPECT_EQ(rtDListInsertAfter(&ctxt, &list, nullptr, &v), nullptr);
  EXPECT_EQ(rtDListInsertBefore(&ctxt, &list, nullptr, &v), nullptr);
  EXPECT_EQ(rtDListAppendArray(&ctxt, &list, &v, 1, sizeof v), ASN_E_NOMEM);
  EXPECT_EQ(list.count, 0u);
  EXPECT_EQ(list.head, nullptr);
  EXPECT_EQ(ctxt.errInfo.status, ASN_E_NOMEM);
  hooks.log().failAfter = -1;
  rtFreeContext(&ctxt);
  EXPECT_EQ(hooks.log().outstanding, 0);
}

TEST(SList, NodesFromTheHeapOrMalloc) {
  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  int a = 1, b = 2, c = 3;

  _Asn1RTSList* heapList = rtSListCreateEx(&ctxt);
  ASSERT_NE(heapList, nullptr);
  EXPECT_EQ(heapList->pctxt, &ctxt);
  _Asn1RTSListNode* node = rtSListAppend(heapList, &a);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.memHeap, node), 1);
  rtSListAppend(heapList, &b);
  rtSListAppend(heapList, &c);
  EXPECT_TRUE(rtSListFind(heapList, &b));
  rtSListRemove(heapList, &c);  // the tail: the tail pointer moves back
  EXPECT_EQ(heapList->tail->data, &b);
  EXPECT_EQ(heapList->count, 2u);
  rtSListAppend(heapList, &c);
  EXPECT_EQ(heapList->head->next->next->data, &c);
  rtSListRemove(heapList, &a);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.memHeap, node), 0);
  EXPECT_EQ(heapList->head->data, &b);
  rtSListRemove(heapList, &a);  // absent: nothing
  EXPECT_EQ(heapList->count, 2u);
  EXPECT_FALSE(rtSListFind(heapList, &a));

  // Freeing clears the context too; the list must be given it again before reuse.
  rtSListFree(heapList);
  EXPECT_EQ(heapList->count, 0u);
  EXPECT_EQ(heapList->head, nullptr);
  EXPECT_EQ(heapList->pctxt, nullptr);
  rtSListInitEx(&ctxt, heapList);
  EXPECT_EQ(heapList->pctxt, &ctxt);

  // Without a context the nodes come from malloc (LeakSanitizer checks they are returned).
  _Asn1RTSList* plain = rtSListCreate();
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->pctxt, nullptr);
  rtSListAppend(plain, &a);
  rtSListAppend(plain, &b);
  rtSListRemove(plain, &a);
  EXPECT_EQ(plain->head, plain->tail);
  rtSListFree(plain);
  free(plain);
  rtFreeContext(&ctxt);
}

TEST(Stack, HoldsThirtyTwoEntries) {
  _Asn1RTStack stack;
  rtStackInit(&stack);
  EXPECT_EQ(rtStackPop(&stack), nullptr);
  int slots[33];
  for (int i = 0; i < 32; i++) ASSERT_EQ(rtStackPush(&stack, &slots[i]), 0);
  EXPECT_EQ(rtStackPush(&stack, &slots[32]), ASN_E_TOODEEP);
  EXPECT_EQ(stack.count, 32);
  for (int i = 31; i >= 0; i--) ASSERT_EQ(rtStackPop(&stack), &slots[i]);
  EXPECT_EQ(rtStackPop(&stack), nullptr);
  EXPECT_EQ(rtStackPush(nullptr, slots), ASN_E_TOODEEP);

}
