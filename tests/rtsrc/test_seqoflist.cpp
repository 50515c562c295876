// The SEQUENCE OF list class: where its context and list come from, what each operation does
// to the list and to the modification count that iterators check, and the iterator itself.
#include <gtest/gtest.h>
#include <quillon/asn1BerCppTypes.h>
#include <quillon/asn1CSeqOfList.h>

#include <functional>
#include <vector>

namespace {

std::vector<int> contents(const ASN1CSeqOfList& list) {
  std::vector<int> out;
  for (int i = 0; i < list.size(); i++) out.push_back(*static_cast<int*>(list.get(i)));
  return out;
}

class SeqOfListTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 10; i++) v[i] = i;
  }
  // A list of v[0..n-1] on the buffer's context.
  void fill(ASN1CSeqOfList& list, int n) {
    for (int i = 0; i < n; i++) ASSERT_NE(list.append(&v[i]), nullptr);
  }
  // Whether op, applied to a list of v[0..2], raised the modification count: an iterator
  // made before it then fails its next step with -27.
  bool changesCount(const std::function<void(ASN1CSeqOfList&)>& op) {
    ASN1CSeqOfList list(buffer);
    fill(list, 3);
    ASN1CSeqOfListIterator* it = list.iterator();
    EXPECT_NE(it, nullptr);
    op(list);
    bool failed = it->next() == nullptr && it->getState() == ASN_E_CONCMODF;
    return failed;
  }

  ASN1BEREncodeBuffer buffer;
  int v[10];
};

}  // namespace

TEST_F(SeqOfListTest, ContextAndListComeFromTheConstructor) {
  ASN1Context* shared = buffer.getContext();
  ASN1OCTET* ownListNode = nullptr;
  {
    ASN1CSeqOfList own(buffer);
    EXPECT_EQ(shared->getRefCount(), 2);
    EXPECT_EQ(own.getCtxtPtr(), buffer.getCtxtPtr());
    ASSERT_NE(own.getList(), nullptr);
    EXPECT_TRUE(own.isEmpty());
    ownListNode = reinterpret_cast<ASN1OCTET*>(own.append(&v[0]));
    EXPECT_EQ(rtMemHeapCheckPtr(&buffer.getCtxtPtr()->memHeap, own.getList()), 1);
  }
  // The object's own list and its nodes went back to the heap.
  EXPECT_EQ(rtMemHeapCheckPtr(&buffer.getCtxtPtr()->memHeap, ownListNode), 0);
  EXPECT_EQ(shared->getRefCount(), 1);

  _Asn1RTDList callers{};
  {
    ASN1CSeqOfList wrap(buffer, callers, 1);
    wrap.append(&v[1]);
    wrap.append(&v[2]);
    EXPECT_EQ(wrap.getList(), &callers);
  }
  // A caller's list keeps its nodes: a value is encoded after its list object is gone.
  ASSERT_EQ(callers.count, 2u);
  EXPECT_EQ(callers.head->data, &v[1]);
  EXPECT_EQ(callers.tail->data, &v[2]);

  {
    ASN1CSeqOfList keep(buffer, callers, 0);
    EXPECT_EQ(keep.size(), 2);
    ASN1CSeqOfList reset(buffer, callers, 1);  // emptied, nodes left in the heap
    EXPECT_TRUE(reset.isEmpty());
  }
  EXPECT_EQ(callers.count, 0u);

  ASN1TSeqOfList member;
  ASN1TPDUSeqOfList pduMember;
  {
    ASN1CSeqOfList onMember(*shared, member);
    ASN1CSeqOfList onPdu(buffer, pduMember);
    EXPECT_EQ(shared->getRefCount(), 3);
    onMember.append(&v[3]);
    onPdu.append(&v[4]);
  }
  EXPECT_EQ(member.count, 1u);
  EXPECT_EQ(pduMember.count, 1u);

  ASN1TSeqOfList standalone;
  ASN1CSeqOfList ownContext(standalone);
  EXPECT_NE(ownContext.getCtxtPtr(), buffer.getCtxtPtr());
  EXPECT_EQ(ownContext.getContext()->getRefCount(), 2);
  ownContext.append(&v[5]);
  EXPECT_EQ(standalone.head->data, &v[5]);
}

// Positions and null anchors are the C list's (tested with it); these are the class's own.
TEST_F(SeqOfListTest, EditingOperations) {
  ASN1CSeqOfList list(buffer);
  fill(list, 3);
  EXPECT_NE(list.insert(0, &v[5]), nullptr);
  EXPECT_NE(list.insertBefore(&v[8], list.getList()->tail), nullptr);
  EXPECT_NE(list.insertAfter(&v[9], nullptr), nullptr);
  EXPECT_EQ(contents(list), (std::vector<int>{9, 5, 0, 1, 8, 2}));

  int stranger = 0;
  EXPECT_EQ(list.set(2, &stranger), &v[0]);
  EXPECT_EQ(list.get(2), &stranger);
  EXPECT_EQ(list.indexOf(&stranger), 2);
  EXPECT_EQ(list.set(99, &v[0]), nullptr);
  EXPECT_EQ(list.get(list.size()), nullptr);

  list.remove(2);
  list.remove(&v[9]);
  list.remove(list.getList()->tail);
  list.remove(static_cast<_Asn1RTDListNode*>(nullptr));
  list.remove(&stranger);  // no longer there
  EXPECT_EQ(contents(list), (std::vector<int>{5, 1, 8}));
  EXPECT_EQ(list.getFirst(), &v[5]);
  EXPECT_EQ(list.getLast(), &v[8]);

  list.clear();
  EXPECT_TRUE(list.isEmpty());
  EXPECT_EQ(list.getFirst(), nullptr);
  EXPECT_EQ(list.getLast(), nullptr);
}

TEST_F(SeqOfListTest, ArraysInAndOut) {
  ASN1CSeqOfList list(buffer);
  list.appendArray(v, 4, sizeof(int));
  EXPECT_EQ(list.get(3), &v[3]);  // pointers into the array, no copies

  // appendArrayCopy counts in bytes: 3 here is less than one int, so one copy is made.
  ASN1CSeqOfList copies(buffer);
  copies.appendArrayCopy(&v[7], 3, sizeof(int));
  ASSERT_EQ(copies.size(), 1);
  copies.appendArrayCopy(&v[7], 3 * sizeof(int), sizeof(int));
  EXPECT_EQ(contents(copies), (std::vector<int>{7, 7, 8, 9}));
  EXPECT_NE(copies.get(1), &v[7]);
  list.appendArray(v, -1, sizeof(int));
  list.appendArrayCopy(v, -4, sizeof(int));
  EXPECT_EQ(list.size(), 4);

  int* array = static_cast<int*>(copies.toArray(sizeof(int)));
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(rtMemHeapCheckPtr(&buffer.getCtxtPtr()->memHeap, array), 1);
  EXPECT_EQ(std::vector<int>(array, array + 4), (std::vector<int>{7, 7, 8, 9}));

  int mine[4] = {};
  EXPECT_EQ(copies.toArray(mine, sizeof(int), 4), mine);
  EXPECT_EQ(mine[3], 9);
  int small[2] = {-1, -1};
  int* grown = static_cast<int*>(copies.toArray(small, sizeof(int), 2));
  ASSERT_NE(grown, small);
  EXPECT_EQ(grown[2], 8);
  EXPECT_EQ(small[0], -1);  // a too small array is left alone
  EXPECT_EQ(copies.toArray(0), nullptr);

  // free() returns the copies themselves to the heap.
  void* firstCopy = copies.getFirst();
  copies.free();
  EXPECT_TRUE(copies.isEmpty());
  EXPECT_EQ(rtMemHeapCheckPtr(&buffer.getCtxtPtr()->memHeap, firstCopy), 0);
}

TEST_F(SeqOfListTest, StructuralChangesInvalidateIterators) {
  int extra = 0;
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.append(&extra); }));
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.insert(1, &extra); }));
  // An out-of-range insert changes nothing in the list but still counts as a change.
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) {
    EXPECT_EQ(l.insert(4, &extra), nullptr);
    EXPECT_EQ(l.size(), 3);
  }));
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.insertAfter(&extra, nullptr); }));
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.appendArray(&extra, 1, sizeof extra); }));
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.set(0, &extra); }));
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.remove(1); }));
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.remove(l.getFirst()); }));
  EXPECT_TRUE(changesCount([&](ASN1CSeqOfList& l) { l.clear(); }));

  EXPECT_FALSE(changesCount([&](ASN1CSeqOfList& l) { l.set(3, &extra); }));
  EXPECT_FALSE(changesCount([&](ASN1CSeqOfList& l) { l.remove(7); }));
  EXPECT_FALSE(changesCount([&](ASN1CSeqOfList& l) { l.remove(&extra); }));
  EXPECT_FALSE(changesCount([&](ASN1CSeqOfList& l) {
    l.remove(static_cast<_Asn1RTDListNode*>(nullptr));
  }));
  EXPECT_FALSE(changesCount([&](ASN1CSeqOfList& l) {
    l.get(1);
    l.indexOf(&extra);
    l.toArray(sizeof(int));
    l.iterator();
  }));
}

TEST_F(SeqOfListTest, IteratorWalksBothWays) {
  ASN1CSeqOfList list(buffer);
  fill(list, 4);
  ASN1CSeqOfListIterator* it = list.iterator();
  std::vector<int> seen;
  while (it->hasNext()) seen.push_back(*static_cast<int*>(it->next()));
  EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(it->next(), nullptr);
  EXPECT_EQ(it->getState(), ASN_E_SETMISRQ);
  EXPECT_EQ(buffer.getStatus(), 0);  // the end of a walk is not an error

  // From the last element backwards: the first step back returns the last element itself.
  ASN1CSeqOfListIterator* back = list.iteratorFromLast();
  EXPECT_EQ(back->prev(), &v[3]);
  EXPECT_EQ(back->prev(), &v[2]);
  EXPECT_EQ(back->prev(), &v[1]);
  EXPECT_EQ(back->prev(), &v[0]);
  EXPECT_FALSE(back->hasPrev());
  EXPECT_EQ(back->prev(), nullptr);
  EXPECT_EQ(back->getState(), ASN_E_SETMISRQ);
  EXPECT_EQ(back->next(), &v[0]);  // stepping forward again after running off the front

  // next then prev hands out the same element, as the position sits between the two.
  ASN1CSeqOfListIterator* from = list.iteratorFrom(&v[1]);
  EXPECT_EQ(from->next(), &v[1]);
  EXPECT_EQ(from->prev(), &v[1]);
  EXPECT_EQ(from->next(), &v[1]);

  int stranger = 0;
  ASN1CSeqOfListIterator* none = list.iteratorFrom(&stranger);
  ASSERT_NE(none, nullptr);
  EXPECT_FALSE(none->hasNext());
  EXPECT_EQ(none->next(), nullptr);
}

TEST_F(SeqOfListTest, ChangesThroughAnIteratorKeepOnlyThatOneValid) {
  ASN1CSeqOfList list(buffer);
  fill(list, 4);
  ASN1CSeqOfListIterator* it = list.iterator();
  ASN1CSeqOfListIterator* other = list.iterator();

  // set through the iterator is not a structural change: every iterator stays valid.
  EXPECT_EQ(it->set(&v[9]), ASN_E_ILLSTATE);  // nothing returned yet
  EXPECT_EQ(it->next(), &v[0]);
  EXPECT_EQ(it->set(&v[9]), 0);
  EXPECT_EQ(other->next(), &v[9]);

  EXPECT_EQ(it->next(), &v[1]);
  EXPECT_EQ(it->remove(), 0);
  EXPECT_EQ(it->remove(), ASN_E_ILLSTATE);
  EXPECT_EQ(it->set(&v[8]), ASN_E_ILLSTATE);
  EXPECT_EQ(it->insert(&v[7]), 0);  // before the next element, v[2]
  EXPECT_EQ(it->next(), &v[2]);
  EXPECT_EQ(contents(list), (std::vector<int>{9, 7, 2, 3}));

  // The other iterator saw the list change under it.
  EXPECT_EQ(buffer.getStatus(), ASN_E_ILLSTATE);  // misuse is recorded
  rtErrReset(&buffer.getCtxtPtr()->errInfo);
  EXPECT_EQ(other->next(), nullptr);
  EXPECT_EQ(other->getState(), ASN_E_CONCMODF);
  EXPECT_EQ(other->set(&v[0]), ASN_E_CONCMODF);
  EXPECT_EQ(other->insert(&v[0]), ASN_E_CONCMODF);
  EXPECT_EQ(other->remove(), ASN_E_CONCMODF);
  EXPECT_EQ(other->prev(), nullptr);
  EXPECT_EQ(buffer.getStatus(), ASN_E_CONCMODF);

  // Removing the element a backward step returned moves the position past it.
  ASN1CSeqOfListIterator* back = list.iteratorFromLast();
  EXPECT_EQ(back->prev(), &v[3]);
  EXPECT_EQ(back->remove(), 0);
  EXPECT_FALSE(back->hasNext());
  EXPECT_EQ(back->insert(&v[6]), 0);  // no next element: at the tail
  EXPECT_EQ(contents(list), (std::vector<int>{9, 7, 2, 6}));

  // A list change made directly invalidates even the iterator that changed it before.
  list.set(0, &v[5]);
  EXPECT_EQ(back->insert(&v[4]), ASN_E_CONCMODF);
}
