// The context object, its smart pointer, the control-class base and the object-identifier
// classes.
#include <gtest/gtest.h>
#include <quillon/asn1BerCppTypes.h>
#include <quillon/asn1CSeqOfList.h>

#include <new>
#include <typeinfo>

#include "heap_hooks.h"
#include "vtable_slot.h"

namespace {

// A control class that records which of its operations ran and with which buffer.
class ProbeControl : public ASN1CType {
 public:
  ProbeControl() = default;
  explicit ProbeControl(ASN1MessageBufferIF& mb) : ASN1CType(mb) {}
  explicit ProbeControl(ASN1Context& ctxt) : ASN1CType(ctxt) {}

  int EncodeTo(ASN1MessageBufferIF& mb) override {
    encodedWith = &mb;
    return 7;
  }
  int DecodeFrom(ASN1MessageBufferIF& mb) override {
    decodedWith = &mb;
    return -3;
  }

  ASN1MessageBufferIF* encodedWith = nullptr;
  ASN1MessageBufferIF* decodedWith = nullptr;
};

// The base class's own operations, reached without any override in between.
class BareControl : public ASN1CType {
 public:
  explicit BareControl(ASN1MessageBufferIF& mb) : ASN1CType(mb) {}
};

}  // namespace

TEST(CppContext, ReferenceCountingDestroysOnLastRelease) {
  HookScope hooks;
  {
    ASN1Context* ctxt = new ASN1Context();
    EXPECT_EQ(ctxt->getRefCount(), 0);
    EXPECT_GT(hooks.log().outstanding, 0);  // its heap
    EXPECT_EQ(static_cast<void*>(ctxt), static_cast<void*>(ctxt->getPtr()));

    ASN1CtxtPtr first(ctxt);
    EXPECT_EQ(ctxt->getRefCount(), 1);
    {
      ASN1CtxtPtr copy(first);
      ASN1CtxtPtr assigned;
      assigned = first;
      EXPECT_EQ(ctxt->getRefCount(), 3);
      EXPECT_EQ(static_cast<ASN1Context*>(assigned), ctxt);
    }
    EXPECT_EQ(ctxt->getRefCount(), 1);

    // Holding the same object again must not drop its only reference on the way.
    first = ctxt;
    const ASN1CtxtPtr& alias = first;
    first = alias;
    EXPECT_EQ(ctxt->getRefCount(), 1);
    EXPECT_EQ(first->getPtr()->key, ASN1_CTXT_KEY);

    // Reassigning releases the old object (its heap goes back) and holds the new one.
    ASN1Context* other = new ASN1Context();
    first = other;
    EXPECT_EQ(other->getRefCount(), 1);
    first = nullptr;
  }
  EXPECT_EQ(hooks.log().outstanding, 0);
}

TEST(CppContext, ControlClassesShareTheBuffersContext) {
  HookScope hooks;
  {
    auto* buffer = new ASN1BEREncodeBuffer();
    ASN1Context* ctxt = buffer->getContext();
    EXPECT_EQ(ctxt->getRefCount(), 1);  // the temporary holder is gone again
    auto* control = new ProbeControl(*buffer);
    EXPECT_EQ(ctxt->getRefCount(), 2);
    EXPECT_EQ(control->getCtxtPtr(), buffer->getCtxtPtr());

    {
      ProbeControl copy(*control);  // generated copy constructors share context and buffer
      EXPECT_EQ(ctxt->getRefCount(), 3);
      EXPECT_EQ(copy.Encode(), 7);
      EXPECT_EQ(copy.encodedWith, buffer);
    }

    // The buffer goes first; the context stays usable through the control class.
    delete buffer;
    EXPECT_EQ(ctxt->getRefCount(), 1);
    ASN1CTXT* pctxt = control->getCtxtPtr();
    void* mem = rtMemHeapAlloc(&pctxt->memHeap, 64);
    ASSERT_NE(mem, nullptr);
    EXPECT_EQ(rtMemHeapCheckPtr(&pctxt->memHeap, mem), 1);
    delete control;
  }
  EXPECT_EQ(hooks.log().outstanding, 0);
}

TEST(CppContext, EncodeAndDecodeGoThroughTheHeldBuffer) {
  ASN1BEREncodeBuffer buffer;
  ProbeControl withBuffer(buffer);
  ASN1CType& base = withBuffer;
  EXPECT_EQ(base.Encode(), 7);
  EXPECT_EQ(withBuffer.encodedWith, &buffer);
  EXPECT_EQ(base.Decode(), -3);
  EXPECT_EQ(withBuffer.decodedWith, &buffer);

  // Without a buffer there is nothing to encode into: a recorded error, not a crash.
  ProbeControl without;
  EXPECT_EQ(without.Encode(), ASN_E_INVPARAM);
  EXPECT_EQ(without.getCtxtPtr()->errInfo.status, ASN_E_INVPARAM);
  EXPECT_EQ(without.Decode(), ASN_E_INVPARAM);
  EXPECT_EQ(without.encodedWith, nullptr);

  // The base class itself encodes and decodes nothing, successfully.
  BareControl bare(buffer);
  EXPECT_EQ(bare.Encode(), 0);
  EXPECT_EQ(bare.Decode(), 0);
  EXPECT_EQ(buffer.getMsgLen(), 0);
}

TEST(CppContext, SetMsgBufSharesTheBuffersHeap) {
  ASN1BERDecodeBuffer buffer;
  ProbeControl own;
  ASN1CTXT* ownCtxt = own.getCtxtPtr();
  ASSERT_NE(ownCtxt->memHeap, buffer.getCtxtPtr()->memHeap);

  own.setMsgBuf(buffer);
  EXPECT_EQ(ownCtxt->memHeap, buffer.getCtxtPtr()->memHeap);
  EXPECT_EQ(own.getCtxtPtr(), ownCtxt);  // the context itself is kept
  EXPECT_EQ(own.Decode(), -3);
  EXPECT_EQ(own.decodedWith, &buffer);
}

TEST(CppContext, VirtualOperationsKeepTheirSlots) {
  // The destructor pair comes first (slots 0 and 1), so the first named operation is slot 2.
  EXPECT_EQ(vtableSlot(&ASN1CType::Encode), 2);
  EXPECT_EQ(vtableSlot(&ASN1CType::Decode), 3);
  EXPECT_EQ(vtableSlot(&ASN1CType::EncodeTo), 4);
  EXPECT_EQ(vtableSlot(&ASN1CType::DecodeFrom), 5);
  // The list class overrides only its destructor and adds no virtual operation.
  EXPECT_EQ(vtableSlot(&ASN1CSeqOfList::DecodeFrom), 5);
  EXPECT_EQ(vtableSlot(&ASN1CSeqOfList::append), -1);
  EXPECT_EQ(vtableSlot(&ASN1Context::_unref), -1);

  using IF = ASN1MessageBufferIF;
  EXPECT_EQ(vtableSlot(&IF::getContext), 2);
  EXPECT_EQ(vtableSlot(&IF::getCtxtPtr), 3);
  EXPECT_EQ(vtableSlot(&IF::getMsgCopy), 4);
  EXPECT_EQ(vtableSlot(&IF::getMsgPtr), 5);
  EXPECT_EQ(vtableSlot(&IF::init), 6);
  EXPECT_EQ(vtableSlot(static_cast<int (IF::*)(ASN1MemBuf&)>(&IF::initBuffer)), 7);
  EXPECT_EQ(vtableSlot(static_cast<int (IF::*)(unsigned short*)>(&IF::initBuffer)), 8);
  EXPECT_EQ(vtableSlot(static_cast<int (IF::*)(char*)>(&IF::initBuffer)), 9);
  EXPECT_EQ(vtableSlot(&IF::isA), 10);

  // The overrides land in the interface's slots; the buffers add none of their own.
  EXPECT_EQ(vtableSlot(&ASN1MessageBuffer::getMsgPtr), 5);
  EXPECT_EQ(vtableSlot(&ASN1BEREncodeBuffer::getMsgCopy), 4);
  EXPECT_EQ(vtableSlot(&ASN1BEREncodeBuffer::init), 6);
  EXPECT_EQ(vtableSlot(&ASN1BEREncodeBuffer::isA), 10);
  EXPECT_EQ(vtableSlot(&ASN1BERDecodeBuffer::init), 6);
  EXPECT_EQ(vtableSlot(&ASN1BERDecodeBuffer::setBuffer), -1);
  EXPECT_EQ(vtableSlot(&ASN1BEREncodeBuffer::getMsgLen), -1);
}

TEST(CppContext, ConstructionFailuresThrowRTLError) {
  HookScope hooks;
  hooks.log().failAfter = 0;  // the context cannot create its heap
  auto expectRTLError = [](auto construct) {
    try {
      construct();
      ADD_FAILURE() << "no exception";
    } catch (const ASN1MessageBuffer::RTLError& e) {
      EXPECT_EQ(e.getStatus(), ASN_E_NOMEM);
    }
  };
  expectRTLError([] { ASN1CtxtPtr p(new ASN1Context()); });
  expectRTLError([] { ASN1BEREncodeBuffer b; });
  expectRTLError([] { ASN1BERDecodeBuffer b; });
  expectRTLError([] { ProbeControl c; });
  expectRTLError([] {
    _Asn1RTDList list{};
    ASN1CSeqOfList l(list);
  });
  EXPECT_EQ(hooks.log().outstanding, 0);

  // Whoever catches the base class catches these too.
  try {
    throw ASN1MessageBuffer::RTLError(ASN_E_NOMEM);
  } catch (const ASN1RTLException& e) {
    EXPECT_EQ(e.getStatus(), ASN_E_NOMEM);
    EXPECT_EQ(typeid(e), typeid(ASN1MessageBuffer::RTLError));
  }
}

TEST(CppObjId, CopiesTakeOnlyTheArcsInUseAndCompareThemAll) {
  const ASN1OBJID record = {3, {1, 2, 840, 99}};  // 99 is beyond the count: not part of it
  const ASN1UINT arcs[] = {1, 2, 840, 7};
  ASN1TObjId copied(record);
  EXPECT_TRUE(copied == ASN1TObjId(3, arcs));
  EXPECT_FALSE(copied == ASN1TObjId(4, arcs)) << "a prefix is not equal";
  ASN1TObjId assigned;
  assigned = ASN1TObjId(4, arcs);
  EXPECT_TRUE(assigned != record) << "the last arc differs";
  const ASN1TObjId& self = assigned;
  assigned = self;
  EXPECT_EQ(assigned.subid[3], 7u);

  // Empty identifiers are equal whatever their arrays hold.
  ASN1OBJID dirty;
  memset(&dirty, 0x5A, sizeof dirty);
  dirty.numids = 0;
  EXPECT_TRUE(ASN1TObjId() == dirty);

  // A count past the record's capacity is cut to it instead of running over the arrays.
  ASN1UINT many[255] = {};
  many[127] = 7;
  ASN1TObjId clipped(255, many);
  EXPECT_EQ(clipped.numids, (ASN1UINT)ASN_K_MAXSUBIDS);
  EXPECT_EQ(clipped.subid[127], 7u);

  const ASN1UINT64 wide[] = {2, 25, 0x123456789ABCDEFull};
  ASN1TObjId64 id(3, wide);
  ASN1OID64 other = id;
  other.subid[2] ^= 1ull << 40;  // differs only above 32 bits
  EXPECT_TRUE(id != other);
  EXPECT_TRUE(ASN1TObjId64(id) == id);
}

TEST(CppValueRecords, DefaultConstructionEmptiesThem) {
  // Built over dirty memory, so that only the constructors can make them empty.
  alignas(8) unsigned char raw[sizeof(ASN1TObjId64)];
  memset(raw, 0xA5, sizeof raw);
  auto* os = new (raw) ASN1TDynOctStr();
  EXPECT_EQ(os->numocts, 0u);
  EXPECT_EQ(os->data, nullptr);
  memset(raw, 0xA5, sizeof raw);
  auto* bs = new (raw) ASN1TDynBitStr();
  EXPECT_EQ(bs->numbits, 0u);
  EXPECT_EQ(bs->data, nullptr);
  memset(raw, 0xA5, sizeof raw);
  auto* list = new (raw) ASN1TSeqOfList();
  EXPECT_EQ(list->count, 0u);
  EXPECT_EQ(list->head, nullptr);
  EXPECT_EQ(list->tail, nullptr);
  memset(raw, 0xA5, sizeof raw);
  EXPECT_EQ((new (raw) ASN1TObjId64())->numids, 0u);
}
