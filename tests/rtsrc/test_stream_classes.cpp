// The stream classes: what they set up, and failures as OSCStreamException.
#include <gtest/gtest.h>

#include <quillon/asn1Stream.h>

#include <stdio.h>
#include <string.h>

#include <string>

#include "stream_harness.h"

TEST(StreamClasses, MemoryStreamsWriteAndRead) {
  OSCMemoryOutputStream out;
  EXPECT_EQ(out.write((const ASN1OCTET*)"0123456789", 10), 0);
  ASN1UINT size = 0;
  ASN1OCTET* data = out.getBufferPtr(&size);
  ASSERT_EQ(size, 10u);
  EXPECT_EQ(std::string((const char*)data, size), "0123456789");
  EXPECT_EQ(out.flush(), 0);

  OSCMemoryInputStream in(data, size);
  ASN1OCTET got[16];
  EXPECT_EQ(in.read(got, 4), 4);
  EXPECT_EQ(in.currentPos(), 4);
  EXPECT_EQ(in.read(got, 16), 6);
  EXPECT_EQ(in.read(got, 16), 0);
  EXPECT_EQ(memcmp(got, "456789", 6), 0);

  ASN1OCTET small[4];
  OSCMemoryOutputStream fixed(small, sizeof small);
  EXPECT_EQ(thrownStatus([&] { fixed.write((const ASN1OCTET*)"12345", 5); }), ASN_E_BUFOVFLW);
  EXPECT_EQ(fixed.write((const ASN1OCTET*)"1234", 4), 0);
  EXPECT_EQ(fixed.getBufferPtr(), small);
}

TEST(StreamClasses, FileStreamsAndTheirFailures) {
  TempDir dir;
  const std::string path = dir.file("classes.bin");
  {
    OSCFileOutputStream out(path.c_str());
    out.write((const ASN1OCTET*)"abc", 3);
    EXPECT_EQ(out.close(), 0);
    EXPECT_EQ(thrownStatus([&] { out.close(); }), ASN_E_NOTINIT) << "closed twice";
    EXPECT_EQ(thrownStatus([&] { out.write((const ASN1OCTET*)"d", 1); }), ASN_E_NOTINIT);
  }
  {
    // A stream going out of scope unclosed closes its own file.
    OSCFileOutputStream out(path.c_str());
    out.write((const ASN1OCTET*)"xyz", 3);
  }
  FILE* f = fopen(path.c_str(), "rb");
  ASSERT_NE(f, nullptr);
  {
    OSCFileInputStream in(f);
    ASN1OCTET got[8];
    EXPECT_EQ(in.read(got, 8), 3);
    EXPECT_EQ(memcmp(got, "xyz", 3), 0);
  }
  EXPECT_EQ(fseek(f, 0, SEEK_SET), 0) << "an attached file stays open";
  fclose(f);

  EXPECT_EQ(thrownStatus([&] { OSCFileInputStream in(dir.file("absent").c_str()); }),
            ASN_E_FILNOTFOU);
  EXPECT_EQ(thrownStatus([&] { OSCMemoryInputStream in(nullptr, 3); }), ASN_E_INVPARAM);
}

namespace {

// A stream as message buffer, as a control class sees it.
class ProbeStream : public ASN1Stream {
 public:
  ProbeStream() {}
  explicit ProbeStream(ASN1OCTET buffered) : ASN1Stream(buffered) {}
};

}  // namespace

TEST(StreamClasses, StreamsAreMessageBuffersOfEveryKindSharingTheirContext) {
  ProbeStream s;
  ASN1MessageBufferIF& buffer = s;
  for (auto kind : {ASN1MessageBufferIF::BEREncode, ASN1MessageBufferIF::BERDecode,
                    ASN1MessageBufferIF::XEREncode, ASN1MessageBufferIF::XERDecode}) {
    EXPECT_TRUE(buffer.isA(kind));
  }
  ASN1CTXT* pctxt = buffer.getCtxtPtr();
  ASSERT_NE(pctxt, nullptr);
  ASSERT_NE(pctxt->pStream, nullptr);
  {
    ASN1CtxtPtr held = buffer.getContext();
    EXPECT_EQ(held->getPtr(), pctxt);
    EXPECT_EQ(held->getRefCount(), 2);
  }
  // The default stream is buffered underneath while saying otherwise; the explicit choice
  // is taken as given.
  EXPECT_FALSE(s.isBuffered());
  EXPECT_TRUE(pctxt->pStream->flags & OSRTSTRMF_BUFFERED);
  ProbeStream plain(0);
  EXPECT_FALSE(plain.getCtxtPtr()->pStream->flags & OSRTSTRMF_BUFFERED);
  ProbeStream buffered(1);
  EXPECT_TRUE(buffered.isBuffered());
  EXPECT_EQ(buffered.getCtxtPtr()->pStream->bufsize, (ASN1UINT)OSRTSTRM_K_BUFSIZE);
  EXPECT_EQ(thrownStatus([&] { buffered.close(); }), ASN_E_NOTINIT) << "no device to close";
}
