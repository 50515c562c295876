// rtMemBuf: growth in segment steps, appending and reserving, the caller's storage that grows
// into the heap, cutting, trimming, reset and free.
#include <gtest/gtest.h>

#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include <string.h>

#include <string>

#include "heap_hooks.h"

namespace {

class MemBufTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(rtInitContext(&ctxt_, nullptr), 0); }
  void TearDown() override { rtFreeContext(&ctxt_); }

  std::string data(ASN1MemBuf* buf) {
    int len = -1;
    ASN1OCTET* p = rtMemBufGetData(buf, &len);
    EXPECT_EQ(len, rtMemBufGetDataLen(buf));
    return p ? std::string(reinterpret_cast<char*>(p), static_cast<size_t>(len)) : "";
  }
  int append(ASN1MemBuf* buf, const char* text) {
    return rtMemBufAppend(buf, reinterpret_cast<const ASN1OCTET*>(text),
                          static_cast<ASN1UINT>(strlen(text)));
  }

  ASN1CTXT ctxt_;
};

}  // namespace

TEST_F(MemBufTest, GrowsInSegmentSteps) {
  ASN1MemBuf buf;
  rtMemBufInit(&ctxt_, &buf, 1024);
  EXPECT_EQ(buf.buffer, nullptr);
  EXPECT_EQ(buf.bufsize, 0u);
  EXPECT_EQ(buf.isDynamic, 1);
  EXPECT_EQ(rtMemBufGetDataLen(&buf), 0);

  EXPECT_EQ(rtMemBufAppend(&buf, nullptr, 0), 0);
  EXPECT_EQ(buf.buffer, nullptr) << "nothing to reserve";
  EXPECT_EQ(rtMemBufPreAllocate(&buf, 1500), 0);
  EXPECT_EQ(buf.bufsize, 2048u);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, buf.buffer), 1);
  EXPECT_EQ(rtMemBufPreAllocate(&buf, 2048), 0);
  EXPECT_EQ(buf.bufsize, 2048u) << "already fits";

  // Reserving with null data leaves the length alone.
  EXPECT_EQ(rtMemBufAppend(&buf, nullptr, 10), 0);
  EXPECT_EQ(rtMemBufGetDataLen(&buf), 0);

  // Contents survive every growth.
  std::string expected;
  for (int i = 0; i < 300; i++) {
    std::string piece = "piece" + std::to_string(i) + ";";
    ASSERT_EQ(append(&buf, piece.c_str()), 0);
    expected += piece;
  }
  EXPECT_EQ(data(&buf), expected);
  EXPECT_EQ(buf.bufsize % 1024, 0u);
  EXPECT_GE(buf.bufsize, expected.size());
  EXPECT_EQ(rtMemBufSet(&buf, 'z', 3), 0);
  EXPECT_EQ(data(&buf), expected + "zzz");
  rtMemBufFree(&buf);
  EXPECT_EQ(buf.buffer, nullptr);
}

TEST_F(MemBufTest, CallersStorageCountsAsFullAndGrowsIntoTheHeap) {
  ASN1OCTET storage[8] = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'};
  ASN1MemBuf buf;
  rtMemBufInitBuffer(&ctxt_, &buf, storage, sizeof storage, 16);
  EXPECT_EQ(buf.isDynamic, 0);
  EXPECT_EQ(data(&buf), "abcdefgh");
  EXPECT_EQ(buf.usedcnt, 8u);

  // Growing moves to a fresh heap element; the wrapped bytes are not carried over.
  ASSERT_EQ(append(&buf, "XY"), 0);
  EXPECT_NE(buf.buffer, storage);
  EXPECT_EQ(buf.isDynamic, 1);
  EXPECT_EQ(buf.bufsize, 16u);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt_.memHeap, buf.buffer), 1);
  EXPECT_EQ(buf.buffer[8], 'X');
  EXPECT_EQ(buf.buffer[9], 'Y');
  EXPECT_EQ(storage[0], 'a') << "the caller's storage is left alone";
  rtMemBufFree(&buf);

  rtMemBufInitBuffer(&ctxt_, &buf, storage, sizeof storage, 16);
  rtMemBufFree(&buf);
  EXPECT_EQ(storage[7], 'h');
}

TEST_F(MemBufTest, CutTrimAndReset) {
  ASN1MemBuf buf;
  rtMemBufInit(&ctxt_, &buf, 32);
  append(&buf, "0123456789");
  EXPECT_EQ(rtMemBufCut(&buf, 2, 3), 0);
  EXPECT_EQ(data(&buf), "0156789");
  EXPECT_EQ(rtMemBufCut(&buf, 5, 3), ASN_E_INVPARAM);
  EXPECT_EQ(data(&buf), "0156789") << "a failed cut changes nothing";
  EXPECT_EQ(rtMemBufCut(&buf, 5, 2), 0);
  EXPECT_EQ(data(&buf), "01567");

  rtMemBufReset(&buf);
  append(&buf, " \t\r\n text with  inner space \n\f\v");
  EXPECT_EQ(rtMemBufTrimW(&buf), 22);
  EXPECT_EQ(data(&buf), "text with  inner space");
  // Offsets of a cut count from the trimmed start, and the range is checked against the data.
  EXPECT_EQ(rtMemBufCut(&buf, 0, 5), 0);
  EXPECT_EQ(data(&buf), "with  inner space");
  EXPECT_EQ(rtMemBufCut(&buf, 10, 8), ASN_E_INVPARAM);

  ASN1OCTET* storage = buf.buffer;
  ASN1UINT capacity = buf.bufsize;
  buf.bitOffset = 3;
  buf.userState = 4;
  rtMemBufReset(&buf);
  EXPECT_EQ(rtMemBufGetDataLen(&buf), 0);
  EXPECT_EQ(buf.startidx, 0u);
  EXPECT_EQ(buf.bitOffset, 0u);
  EXPECT_EQ(buf.userState, 0u);
  EXPECT_EQ(buf.buffer, storage) << "storage is kept";
  EXPECT_EQ(buf.bufsize, capacity);

  append(&buf, "   ");
  EXPECT_EQ(rtMemBufTrimW(&buf), 0);
  rtMemBufFree(&buf);
}

TEST(MemBuf, AllocationFailureLeavesTheBufferAsItWas) {
  HookScope hooks;
  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  ASN1MemBuf buf;
  rtMemBufInit(&ctxt, &buf, 64);
  ASSERT_EQ(rtMemBufAppend(&buf, reinterpret_cast<const ASN1OCTET*>("abc"), 3), 0);
  ASN1OCTET* before = buf.buffer;
  hooks.log().failAfter = 0;
  EXPECT_EQ(rtMemBufPreAllocate(&buf, 100000), ASN_E_NOMEM);
  EXPECT_EQ(rtMemBufSet(&buf, 0, 100000), ASN_E_NOMEM);
  EXPECT_EQ(buf.buffer, before);
  EXPECT_EQ(buf.bufsize, 64u);
  EXPECT_EQ(rtMemBufGetDataLen(&buf), 3);
  EXPECT_EQ(memcmp(buf.buffer, "abc", 3), 0);
  EXPECT_EQ(ctxt.errInfo.status, ASN_E_NOMEM);
  // A size that does not fit the 32-bit counters is refused, not wrapped.
  hooks.log().failAfter = -1;
  EXPECT_EQ(rtMemBufPreAllocate(&buf, 0xFFFFFFFFu), ASN_E_NOMEM);
  rtMemBufFree(&buf);
  rtFreeContext(&ctxt);
  EXPECT_EQ(hooks.log().outstanding, 0);
}
