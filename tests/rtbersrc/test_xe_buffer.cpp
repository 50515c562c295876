// The encoder's reverse buffer: room, growth, static overflow, location descriptors.
#include <gtest/gtest.h>

#include <string.h>

#include "encode_harness.h"
#include "heap_hooks.h"

namespace {

Bytes pattern(size_t n, uint8_t seed) {
  Bytes b(n);
  for (size_t i = 0; i < n; ++i) b[i] = (uint8_t)(seed + i * 7);
  return b;
}

TEST(XeBuffer, SetpPositionsAtTheEndLeavingTheLastOctetUnused) {
  EncodeHarness dyn;
  EXPECT_EQ(dyn.ctxt()->buffer.size, 16384u);
  EXPECT_EQ(dyn.ctxt()->buffer.byteIndex, 16383u);
  EXPECT_TRUE(dyn.ctxt()->buffer.dynamic);

  ASN1OCTET buf[8];
  memset(buf, 0xEE, sizeof buf);
  EncodeHarness fixed(buf, sizeof buf);
  ASN1BOOL t = 1;
  ASSERT_EQ(xe_boolean(fixed.ctxt(), &t, ASN1EXPL), 3);
  EXPECT_EQ(xe_getp(fixed.ctxt()), buf + 4);
  EXPECT_EQ(hexOf(Bytes(buf + 4, buf + 8)), "01 01 FF EE");
}

TEST(XeBuffer, StaticBufferOverflowsWithoutTouchingWhatIsWritten) {
  ASN1OCTET buf[3] = {0, 0, 0};
  EncodeHarness h(buf, sizeof buf);
  ASN1BOOL f = 0, t = 1;
  EXPECT_EQ(xe_boolean(h.ctxt(), &t, ASN1IMPL), 1);
  EXPECT_EQ(xe_boolean(h.ctxt(), &f, ASN1IMPL), 1);
  EXPECT_EQ(xe_boolean(h.ctxt(), &t, ASN1IMPL), ASN_E_BUFOVFLW);
  EXPECT_EQ(h.context().errorStatus(), ASN_E_BUFOVFLW);
  EXPECT_EQ(h.context().errorModule(), "rtbersrc/xe_buffer");
  EXPECT_EQ(h.ctxt()->buffer.byteIndex, 0u);
  EXPECT_EQ(h.hex(), "00 FF");

  // A multi-octet write that does not fit is refused whole, not cut.
  ASN1OCTET buf2[4];
  EncodeHarness h2(buf2, sizeof buf2);
  const ASN1OCTET three[] = {1, 2, 3, 4};
  EXPECT_EQ(xe_memcpy(h2.ctxt(), three, 4), ASN_E_BUFOVFLW);
  EXPECT_EQ(h2.ctxt()->buffer.byteIndex, 3u);
  EXPECT_EQ(xe_expandBuffer(h2.ctxt(), 1), ASN_E_BUFOVFLW);
}

TEST(XeBuffer, GrowthKeepsWrittenOctetsAndLocations) {
  EncodeHarness h(16);
  Bytes first = pattern(10, 1), second = pattern(100, 50), third = pattern(40000, 9);
  ASSERT_EQ(xe_memcpy(h.ctxt(), first.data(), 10), 10);
  Asn1BufLocDescr firstLoc;
  xe_getBufLocDescr(h.ctxt(), 10, &firstLoc);

  ASSERT_EQ(xe_memcpy(h.ctxt(), second.data(), 100), 100);
  // Growth adds one step of 16384 octets when less is needed.
  EXPECT_EQ(h.ctxt()->buffer.size, 16u + 16384u);
  // A write larger than the minimum growth step still fits in one growth.
  ASSERT_EQ(xe_memcpy(h.ctxt(), third.data(), 40000), 40000);

  Bytes expected = third;
  expected.insert(expected.end(), second.begin(), second.end());
  expected.insert(expected.end(), first.begin(), first.end());
  EXPECT_EQ(h.written(), expected);

  const ASN1BUFFER& b = h.ctxt()->buffer;
  const ASN1OCTET* firstNow = b.data + b.size - 1 - firstLoc.offset;
  EXPECT_EQ(Bytes(firstNow, firstNow + firstLoc.numocts), first);
}

TEST(XeBuffer, MemcpyRefusesNullBytes) {
  EncodeHarness h;
  EXPECT_EQ(xe_memcpy(h.ctxt(), nullptr, 0), ASN_E_BADVALUE);
  EXPECT_EQ(xe_memcpy(h.ctxt(), nullptr, 5), ASN_E_BADVALUE);
  EXPECT_TRUE(h.written().empty());
}

TEST(XeBuffer, FreeDetachesADynamicBufferOnly) {
  EncodeHarness h;
  xe_free(h.ctxt());
  EXPECT_EQ(h.ctxt()->buffer.data, nullptr);
  EXPECT_FALSE(h.ctxt()->buffer.dynamic);
  // Nothing is left to write into: the next write reports it instead of using freed memory.
  ASN1INT v = 5;
  EXPECT_EQ(xe_integer(h.ctxt(), &v, ASN1EXPL), ASN_E_BUFOVFLW);

  ASN1OCTET buf[4];
  EncodeHarness fixed(buf, sizeof buf);
  xe_free(fixed.ctxt());
  EXPECT_EQ(fixed.ctxt()->buffer.data, buf);
}

TEST(XeBuffer, MemoryFailuresAreReportedAndRecoverable) {
  EncodeHarness h(8);
  ASN1INT v = 0x12345678;
  ASSERT_EQ(xe_integer(h.ctxt(), &v, ASN1IMPL), 4);
  {
    HookScope hooks;
    hooks.log().failAfter = 0;
    Bytes big = pattern(20, 3);
    EXPECT_EQ(xe_memcpy(h.ctxt(), big.data(), 20), ASN_E_NOMEM);
  }
  EXPECT_EQ(h.hex(), "12 34 56 78");

  // A dynamic buffer that could not be had at xe_setp is retried by the first write.
  TestContext ctx;
  {
    HookScope hooks;
    hooks.log().failAfter = 0;
    EXPECT_EQ(xe_setp(ctx.get(), nullptr, 1 << 20), 0);
  }
  EXPECT_EQ(ctx.get()->buffer.data, nullptr);
  EXPECT_EQ(xe_integer(ctx.get(), &v, ASN1EXPL), 6);
  EXPECT_EQ(hexOf(Bytes(xe_getp(ctx.get()), xe_getp(ctx.get()) + 6)), "02 04 12 34 56 78");
}

TEST(XeBuffer, UnusableAttachmentsFailOnFirstWrite) {
  ASN1CTXT raw;
  memset(&raw, 0, sizeof raw);  // never initialised
  EXPECT_EQ(xe_setp(&raw, nullptr, 0), 0);
  ASN1BOOL t = 1;
  EXPECT_EQ(xe_boolean(&raw, &t, ASN1EXPL), ASN_E_BUFOVFLW);

  TestContext ctx;
  ASN1OCTET buf[4];
  xe_setp(ctx.get(), buf, -5);
  EXPECT_EQ(xe_boolean(ctx.get(), &t, ASN1EXPL), ASN_E_BUFOVFLW);
}

}  // namespace
