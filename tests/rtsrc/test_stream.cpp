// The stream record, its file and memory devices, and the buffering layer.
#include <gtest/gtest.h>

#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>
#include <quillon/rtStream.h>

#include <stdio.h>

#include <numeric>
#include <string>

#include "heap_hooks.h"
#include "stream_harness.h"
#include "test_context.h"

namespace {

StreamBytes countingBytes(size_t n) {
  StreamBytes b(n);
  for (size_t i = 0; i < n; ++i) b[i] = (unsigned char)(i * 7 + i / 251);
  return b;
}

StreamBytes readAll(ASN1CTXT* pctxt, size_t n) {
  StreamBytes out(n);
  long got = rtStreamBufRead(pctxt, out.data(), n);
  if (got < 0) return {};
  return out;
}

std::string fileText(const std::string& path) {
  FILE* f = fopen(path.c_str(), "rb");
  if (!f) return "<missing>";
  std::string s;
  int c;
  while ((c = fgetc(f)) != EOF) s += (char)c;
  fclose(f);
  return s;
}

}  // namespace

TEST(StreamMemory, OwnBufferGrowsByWhatIsNeededPlusAMargin) {
  TestContext ctx;
  ASSERT_EQ(rtStreamInit(ctx.get()), 0);
  ASSERT_EQ(rtStreamMemoryCreate(ctx.get(), OSRTSTRMF_OUTPUT), 0);
  const ASN1OCTET ten[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  EXPECT_EQ(rtStreamWrite(ctx.get(), ten, 10), 0);
  size_t len = 0;
  ASN1OCTET* data = rtStreamMemoryGetBuffer(ctx.get(), &len);
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(len, 10u);
  EXPECT_EQ(memcmp(data, ten, 10), 0);
  auto* device = static_cast<OSRTMemoryDevice*>(ctx.get()->pStream->device);
  EXPECT_EQ(device->size, 522u);
  EXPECT_EQ(rtStreamGetIOBytes(ctx.get()), 10);

  // The next write that fits the margin does not move the buffer; one that does not fit does.
  EXPECT_EQ(rtStreamWrite(ctx.get(), ten, 10), 0);
  EXPECT_EQ(rtStreamMemoryGetBuffer(ctx.get(), &len), data);
  StreamBytes big(600, 0xAB);
  EXPECT_EQ(rtStreamWrite(ctx.get(), big.data(), big.size()), 0);
  EXPECT_EQ(device->size, 20u + 600u + 512u);
  data = rtStreamMemoryGetBuffer(ctx.get(), &len);
  EXPECT_EQ(len, 620u);
  EXPECT_EQ(memcmp(data + 10, ten, 10), 0);
  EXPECT_EQ(data[619], 0xAB);
}

TEST(StreamMemory, AttachedBufferRefusesAnOverflowingWriteWhole) {
  TestContext ctx;
  ASN1OCTET four[4] = {0, 0, 0, 0};
  ASSERT_EQ(rtStreamInit(ctx.get()), 0);
  ASSERT_EQ(rtStreamMemoryAttach(ctx.get(), four, sizeof four, OSRTSTRMF_OUTPUT), 0);
  const ASN1OCTET five[5] = {9, 9, 9, 9, 9};
  EXPECT_EQ(rtStreamWrite(ctx.get(), five, 5), ASN_E_BUFOVFLW);
  EXPECT_EQ(four[0], 0) << "nothing of a refused write lands";
  EXPECT_EQ(rtStreamWrite(ctx.get(), five, 4), 0);
  EXPECT_EQ(four[3], 9);
  EXPECT_EQ(rtStreamWrite(ctx.get(), five, 1), ASN_E_BUFOVFLW);
  EXPECT_EQ(rtStreamGetIOBytes(ctx.get()), 4) << "failed writes are not counted";
}

TEST(StreamMemory, DirectionAndSetUpAreChecked) {
  TestContext ctx;
  ASN1OCTET byte = 0;
  EXPECT_EQ(rtStreamRead(ctx.get(), &byte, 1), ASN_E_NOTINIT) << "no stream at all";
  EXPECT_EQ(rtStreamGetIOBytes(ctx.get()), ASN_E_NOTINIT);
  ASSERT_EQ(rtStreamInit(ctx.get()), 0);
  EXPECT_EQ(rtStreamMemoryCreate(ctx.get(), 0), ASN_E_INVPARAM);
  EXPECT_EQ(rtStreamMemoryAttach(ctx.get(), nullptr, 4, OSRTSTRMF_INPUT), ASN_E_INVPARAM);
  ASSERT_EQ(rtStreamMemoryCreate(ctx.get(), OSRTSTRMF_OUTPUT), 0);
  EXPECT_EQ(rtStreamRead(ctx.get(), &byte, 1), ASN_E_NOTINIT);
  EXPECT_EQ(rtStreamSkip(ctx.get(), 1), ASN_E_INVPARAM);
  EXPECT_EQ(rtStreamBufMark(ctx.get(), 8), ASN_E_INVPARAM);
  EXPECT_EQ(ctx.errorStatus(), ASN_E_NOTINIT) << "the first failure is the one recorded";

  // The device functions check the direction themselves too.
  OSRTSTREAM* s = ctx.get()->pStream;
  EXPECT_EQ(s->write(s->device, &byte, 1), 0);
  s->flags = OSRTSTRMF_INPUT;
  EXPECT_EQ(s->write(s->device, &byte, 1), ASN_E_INVPARAM);
  s->flags = OSRTSTRMF_OUTPUT;
}

TEST(StreamMemory, InputReadsSkipsAndStopsAtTheEnd) {
  TestContext ctx;
  StreamBytes bytes = countingBytes(10);
  ASSERT_EQ(rtStreamInit(ctx.get()), 0);
  ASSERT_EQ(rtStreamMemoryAttach(ctx.get(), bytes.data(), bytes.size(), OSRTSTRMF_INPUT), 0);
  ASN1OCTET got[8];
  EXPECT_EQ(rtStreamRead(ctx.get(), got, 3), 3);
  EXPECT_EQ(got[2], bytes[2]);
  EXPECT_EQ(rtStreamSkip(ctx.get(), 2), 0);
  EXPECT_EQ(rtStreamRead(ctx.get(), got, 8), 5) << "only what is left";
  EXPECT_EQ(got[0], bytes[5]);
  EXPECT_EQ(rtStreamRead(ctx.get(), got, 8), 0);
  EXPECT_EQ(rtStreamSkip(ctx.get(), 5), 0);
  size_t len = 0;
  EXPECT_EQ(rtStreamMemoryGetBuffer(ctx.get(), &len), bytes.data());
  EXPECT_EQ(len, 10u);
}

TEST(StreamFile, WriteCloseAndReadBack) {
  TempDir dir;
  const std::string path = dir.file("out.bin");
  TestContext ctx;
  ASSERT_EQ(rtStreamBufInit(ctx.get()), 0);
  ASSERT_EQ(rtStreamFileOpen(ctx.get(), path.c_str(), OSRTSTRMF_OUTPUT), 0);
  EXPECT_EQ(rtStreamWrite(ctx.get(), (const ASN1OCTET*)"hello ", 6), 0);
  EXPECT_EQ(rtStreamBufWrite(ctx.get(), (const ASN1OCTET*)"world", 5), 0);
  EXPECT_EQ(fileText(path), "") << "staged and libc-buffered until flushed";
  EXPECT_EQ(rtStreamClose(ctx.get()), 0);
  EXPECT_EQ(fileText(path), "hello world") << "close writes the staged bytes and flushes";
  EXPECT_EQ(rtStreamClose(ctx.get()), ASN_E_NOTINIT) << "the flags were cleared";

  ASSERT_EQ(rtStreamFileOpen(ctx.get(), path.c_str(), OSRTSTRMF_INPUT), 0);
  EXPECT_EQ(rtStreamBufGetPos(ctx.get()), 0);
  StreamBytes got = readAll(ctx.get(), 11);
  EXPECT_EQ(std::string(got.begin(), got.end()), "hello world");
  ASN1OCTET more;
  EXPECT_EQ(rtStreamBufRead(ctx.get(), &more, 1), ASN_E_ENDOFBUF);

  EXPECT_EQ(rtStreamFileOpen(ctx.get(), dir.file("missing/x").c_str(), OSRTSTRMF_INPUT),
            ASN_E_FILNOTFOU);
  EXPECT_EQ(rtStreamFileOpen(ctx.get(), path.c_str(), 0), ASN_E_INVPARAM);
}

TEST(StreamFile, AttachedFileIsLeftOpenAndReleasingWritesStagedOutput) {
  TempDir dir;
  const std::string path = dir.file("attached.bin");
  FILE* f = fopen(path.c_str(), "wb");
  ASSERT_NE(f, nullptr);
  {
    TestContext ctx;
    ASSERT_EQ(rtStreamBufInit(ctx.get()), 0);
    ASSERT_EQ(rtStreamFileAttach(ctx.get(), f, OSRTSTRMF_OUTPUT), 0);
    EXPECT_EQ(rtStreamBufWrite(ctx.get(), (const ASN1OCTET*)"abc", 3), 0);
    // The context goes without close: releasing it must not lose what was staged.
  }
  EXPECT_GE(fputs("def", f), 0) << "the caller's file is still open";
  EXPECT_EQ(fclose(f), 0);
  EXPECT_EQ(fileText(path), "abcdef");

  TestContext ctx;
  EXPECT_EQ(rtStreamFileAttach(ctx.get(), nullptr, OSRTSTRMF_INPUT), ASN_E_INVPARAM);
}

TEST(StreamBuffer, MarkAndResetReturnWithinTheLimitOnly) {
  StreamBytes bytes = countingBytes(5000);
  MemoryInput in(bytes);
  ASN1CTXT* pctxt = in.ctxt();
  EXPECT_EQ(rtStreamBufReset(pctxt), ASN_E_INVPARAM) << "no mark yet";

  ASN1OCTET skip[100];
  ASSERT_EQ(rtStreamBufRead(pctxt, skip, 100), 100);
  ASSERT_EQ(rtStreamBufMark(pctxt, 3000), 0);
  // Reads larger than the read buffer still come back after a reset while within the limit.
  StreamBytes first = readAll(pctxt, 2500);
  ASSERT_EQ(first.size(), 2500u);
  EXPECT_EQ(rtStreamBufGetPos(pctxt), 2600);
  ASSERT_EQ(rtStreamBufReset(pctxt), 0);
  EXPECT_EQ(rtStreamBufGetPos(pctxt), 100);
  StreamBytes again = readAll(pctxt, 3000);
  ASSERT_EQ(again.size(), 3000u);
  EXPECT_TRUE(std::equal(first.begin(), first.end(), again.begin()));
  EXPECT_EQ(again[2999], bytes[3099]);
  EXPECT_EQ(rtStreamBufReset(pctxt), 0) << "exactly at the limit is still within it";

  ASSERT_EQ(rtStreamBufRead(pctxt, skip, 1), 1);
  StreamBytes past = readAll(pctxt, 3000);
  ASSERT_EQ(past.size(), 3000u);
  EXPECT_EQ(past[0], bytes[101]);
  EXPECT_EQ(rtStreamBufReset(pctxt), ASN_E_INVPARAM) << "read past the limit";
  EXPECT_EQ(rtStreamBufReset(pctxt), ASN_E_INVPARAM) << "and the mark is gone";
}

TEST(StreamBuffer, ReadsAcrossPartialDeviceReadsAndReportsTheEnd) {
  StreamBytes bytes = countingBytes(3000);
  TrickleDevice device(bytes, 7);
  TestContext ctx;
  device.install(ctx.get());
  StreamBytes got;
  // Small and large requests alternate so both the refill and the direct path run.
  const size_t sizes[] = {1, 2, 3, 1500, 5, 1024, 400};
  for (size_t n : sizes) {
    StreamBytes part = readAll(ctx.get(), n);
    ASSERT_EQ(part.size(), n);
    got.insert(got.end(), part.begin(), part.end());
  }
  ASSERT_EQ(got.size(), 2935u);
  EXPECT_TRUE(std::equal(got.begin(), got.end(), bytes.begin()));
  ASN1OCTET tail[100];
  EXPECT_EQ(rtStreamBufRead(ctx.get(), tail, 100), ASN_E_ENDOFBUF);
  EXPECT_EQ(rtStreamGetIOBytes(ctx.get()), 3000);
}

TEST(StreamBuffer, SmallReadsShareDeviceCallsAndPreReadLooksAhead) {
  StreamBytes bytes = countingBytes(4096);
  TrickleDevice device(bytes, 4096);
  TestContext ctx;
  device.install(ctx.get());
  for (int i = 0; i < 512; ++i) {
    ASN1OCTET b;
    ASSERT_EQ(rtStreamBufRead(ctx.get(), &b, 1), 1);
    ASSERT_EQ(b, bytes[i]);
  }
  EXPECT_LE(device.readCalls(), 2) << "one-byte reads are served from the buffer";

  EXPECT_EQ(rtStreamBufPreRead(ctx.get(), 600), 1024) << "at least 600: the buffer refilled";
  EXPECT_EQ(rtStreamBufGetPos(ctx.get()), 512) << "looking ahead consumes nothing";
  EXPECT_EQ(ctx.get()->buffer.data[ctx.get()->buffer.byteIndex], bytes[512]);
  EXPECT_EQ(rtStreamBufSkip(ctx.get(), 1000), 0);
  EXPECT_EQ(rtStreamBufPreRead(ctx.get(), 5000), 4096 - 1512) << "fewer only at the end";
  EXPECT_EQ(ctx.get()->buffer.data[ctx.get()->buffer.byteIndex], bytes[1512]);
}

TEST(StreamBuffer, StagedOutputKeepsItsOrderAcrossLargeWrites) {
  MemoryOutput out;
  StreamBytes expected;
  StreamBytes large = countingBytes(5000);
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 300; ++i) {
      ASN1OCTET b = (ASN1OCTET)(round * 300 + i);
      ASSERT_EQ(rtStreamBufWrite(out.ctxt(), &b, 1), 0);
      expected.push_back(b);
    }
    ASSERT_EQ(rtStreamBufWrite(out.ctxt(), large.data(), large.size()), 0);
    expected.insert(expected.end(), large.begin(), large.end());
  }
  EXPECT_EQ(out.bytes(), expected);
}

TEST(StreamRelease, HeapResetsSpareTheStreamAndFreeingReturnsEverything) {
  HookScope hooks;
  {
    TestContext ctx;
    ASSERT_EQ(rtStreamBufInit(ctx.get()), 0);
    ASSERT_EQ(rtStreamMemoryCreate(ctx.get(), OSRTSTRMF_OUTPUT), 0);
    ASSERT_EQ(rtStreamBufWrite(ctx.get(), (const ASN1OCTET*)"abc", 3), 0);
    // A decoding application resets its heap between messages; the stream stays usable.
    rtMemHeapReset(&ctx.get()->memHeap);
    rtMemHeapReset(&ctx.get()->msgMemHeap);
    ASSERT_EQ(rtStreamBufWrite(ctx.get(), (const ASN1OCTET*)"def", 3), 0);
    size_t len = 0;
    const ASN1OCTET* data = rtStreamMemoryGetBuffer(ctx.get(), &len);
    ASSERT_EQ(len, 6u);
    EXPECT_EQ(std::string((const char*)data, 6), "abcdef");

    ASSERT_EQ(rtStreamRelease(ctx.get()), 0);
    EXPECT_EQ(ctx.get()->pStream, nullptr);
    EXPECT_EQ(ctx.get()->buffer.data, nullptr) << "the read buffer went with the stream";
    EXPECT_EQ(rtStreamRelease(ctx.get()), 0) << "nothing left to release";
    ASSERT_EQ(rtStreamFileOpen(ctx.get(), "/nonexistent/dir/x", OSRTSTRMF_INPUT),
              ASN_E_FILNOTFOU);
  }
  EXPECT_EQ(hooks.log().outstanding, 0);
}
