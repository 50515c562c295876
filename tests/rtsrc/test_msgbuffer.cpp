// The message-buffer interface's defaults and what every context-owning buffer shares.
#include <gtest/gtest.h>
#include <quillon/asn1BerCppTypes.h>

namespace {

// The interface alone, with only its pure operations filled in.
class MinimalBuffer : public ASN1MessageBufferIF {
 public:
  ASN1CtxtPtr getContext() override { return ctxt_; }
  ASN1CTXT* getCtxtPtr() override { return ctxt_->getPtr(); }
  int isA(Type) override { return 1; }

 private:
  ASN1CtxtPtr ctxt_{new ASN1Context()};
};

}  // namespace

TEST(MessageBufferIF, DefaultsReportNothingAndRefuseInitBuffer) {
  MinimalBuffer buffer;
  ASN1MessageBufferIF& mb = buffer;
  EXPECT_EQ(mb.getMsgCopy(), nullptr);
  EXPECT_EQ(mb.getMsgPtr(), nullptr);
  mb.init();

  ASN1MemBuf membuf;
  rtMemBufInit(mb.getCtxtPtr(), &membuf, 0);
  EXPECT_EQ(mb.initBuffer(membuf), ASN_E_NOTSUPP);
  unsigned short wide[] = {'a', 0};
  char narrow[] = "a";
  EXPECT_EQ(mb.initBuffer(wide), ASN_E_NOTSUPP);
  EXPECT_EQ(mb.initBuffer(narrow), ASN_E_NOTSUPP);
  EXPECT_EQ(mb.getCtxtPtr()->buffer.data, nullptr);
}

TEST(MessageBuffer, InitBufferTakesAMemoryBuffersData) {
  ASN1BERDecodeBuffer buffer;
  ASN1MessageBufferIF& mb = buffer;
  ASN1CTXT* pctxt = mb.getCtxtPtr();

  ASN1MemBuf membuf;
  rtMemBufInit(pctxt, &membuf, 0);
  const ASN1OCTET bytes[] = {0x02, 0x01, 0x05};
  ASSERT_EQ(rtMemBufAppend(&membuf, bytes, sizeof bytes), 0);
  ASSERT_EQ(mb.initBuffer(membuf), 0);
  EXPECT_EQ(pctxt->buffer.data, rtMemBufGetData(&membuf, nullptr));
  EXPECT_EQ(pctxt->buffer.size, 3u);
  EXPECT_EQ(mb.getMsgPtr(), pctxt->buffer.data);

  // The text forms belong to the XML buffers.
  unsigned short wide[] = {'a', 0};
  char narrow[] = "<a/>";
  EXPECT_EQ(mb.initBuffer(wide), ASN_E_NOTSUPP);
  EXPECT_EQ(mb.initBuffer(narrow), ASN_E_NOTSUPP);
  EXPECT_EQ(pctxt->buffer.size, 3u);
  rtMemBufFree(&membuf);
}

TEST(MessageBuffer, Kinds) {
  ASN1BEREncodeBuffer enc;
  ASN1BERDecodeBuffer dec;
  using T = ASN1MessageBufferIF;
  for (int kind = 0; kind <= 5; kind++) {
    EXPECT_EQ(enc.isA(T::Type(kind)) != 0, kind == T::BEREncode) << kind;
    EXPECT_EQ(dec.isA(T::Type(kind)) != 0, kind == T::BERDecode) << kind;
  }
  EXPECT_EQ(int(T::BEREncode), 0);
  EXPECT_EQ(int(T::BERDecode), 1);
  EXPECT_EQ(int(T::XEREncode), 4);
  EXPECT_EQ(int(T::XERDecode), 5);

  // A plain message buffer has no message to copy; only the encode buffer makes one.
  EXPECT_EQ(dec.getMsgCopy(), nullptr);
}
