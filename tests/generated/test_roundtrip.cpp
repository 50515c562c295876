// Every generated type, sampled in each of its variants (CHOICE alternatives, information
// objects of a table constraint): the sample encodes; its encoding decodes into a value that
// encodes to the same bytes; a copy of that value encodes to the same bytes too; and free
// gives the heap back every block that a decode or a copy took.
#include <gtest/gtest.h>
#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/rtContext.h>

#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "heap_census.h"
#include "quillon_samples.h"
#include "test_context.h"

namespace {

using Bytes = std::vector<ASN1OCTET>;

// Zeroed storage for one value: the state of a default-constructed value type.
class Storage {
 public:
  explicit Storage(size_t size) : mem_(calloc(1, size ? size : 1)) {}
  ~Storage() { free(mem_); }
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;
  void* get() { return mem_; }

 private:
  void* mem_;
};

std::string hex(const Bytes& b) {
  static const char digits[] = "0123456789ABCDEF";
  std::string s;
  for (ASN1OCTET o : b) {
    s += digits[o >> 4];
    s += digits[o & 15];
  }
  return s;
}

// The encode contexts live as long as the test: an encode of a table-constrained value leaves
// the value's octets in the encoding context's heap.
class RoundTrip {
 public:
  explicit RoundTrip(const QnTypeOps& ops) : ops_(ops) {}

  Bytes encode(void* value) {
    contexts_.emplace_back(new TestContext());
    ASN1CTXT* pctxt = contexts_.back()->get();
    xe_setp(pctxt, nullptr, 0);
    int len = ops_.encode(pctxt, value);
    EXPECT_GE(len, 0) << ops_.name << ": encode failed";
    if (len < 0) return Bytes();
    const ASN1OCTET* p = xe_getp(pctxt);
    return Bytes(p, p + len);
  }

  // Decodes from a heap block of exactly the message's size, so that a read past its end is
  // one the sanitizer build reports.
  int decode(TestContext& ctx, const Bytes& bytes, void* value) {
    messages_.emplace_back(new ASN1OCTET[bytes.size()]);
    memcpy(messages_.back().get(), bytes.data(), bytes.size());
    int stat = xd_setp(ctx.get(), messages_.back().get(), (int)bytes.size(), nullptr, nullptr);
    if (stat != 0) return stat;
    return ops_.decode(ctx.get(), value);
  }

 private:
  const QnTypeOps& ops_;
  std::vector<std::unique_ptr<TestContext>> contexts_;
  std::vector<std::unique_ptr<ASN1OCTET[]>> messages_;
};

class GeneratedType : public ::testing::TestWithParam<unsigned> {};

TEST_P(GeneratedType, EncodesDecodesCopiesAndFrees) {
  const QnTypeOps& ops = qnTypeOps[GetParam()];
  for (unsigned variant = 0; variant < ops.variants; ++variant) {
    SCOPED_TRACE(std::string(ops.module) + "." + ops.name + " variant " +
                 std::to_string(variant));
    RoundTrip trip(ops);
    TestContext sampleCtx;
    Storage sample(ops.size);
    ops.sample(sampleCtx.get(), sample.get(), variant);
    Bytes first = trip.encode(sample.get());
    ASSERT_FALSE(first.empty());

    // Free after a plain decode leaves nothing behind.
    TestContext freeCtx;
    Storage decoded(ops.size);
    ASSERT_EQ(trip.decode(freeCtx, first, decoded.get()), 0) << hex(first);
    ops.release(freeCtx.get(), decoded.get());
    EXPECT_EQ(liveHeapElements(freeCtx.get()), 0) << "free left blocks in the heap";

    TestContext ctx;
    Storage value(ops.size);
    ASSERT_EQ(trip.decode(ctx, first, value.get()), 0) << hex(first);
    EXPECT_EQ(hex(trip.encode(value.get())), hex(first)) << "re-encoding differs";

    // A copy takes new blocks that free returns, and encodes like its source.
    long before = liveHeapElements(ctx.get());
    Storage freed(ops.size);
    ops.copy(ctx.get(), value.get(), freed.get());
    ops.release(ctx.get(), freed.get());
    EXPECT_EQ(liveHeapElements(ctx.get()), before) << "free of a copy left blocks";
    Storage copy(ops.size);
    ops.copy(ctx.get(), value.get(), copy.get());
    EXPECT_EQ(hex(trip.encode(copy.get())), hex(first)) << "the copy encodes differently";
  }
}

// Bad input gets a status, never a crash, an out-of-bounds read (the sanitizer build watches
// every read: each message lies in a heap block of its exact size) or a heap that free cannot
// empty. Every proper prefix of an encoding fails; every octet of it flipped three ways either
// fails or decodes into a value that frees cleanly.
TEST_P(GeneratedType, RejectsTruncationsAndSurvivesCorruption) {
  const QnTypeOps& ops = qnTypeOps[GetParam()];
  TestContext sampleCtx;
  Storage sample(ops.size);
  ops.sample(sampleCtx.get(), sample.get(), 0);
  RoundTrip trip(ops);
  Bytes good = trip.encode(sample.get());
  ASSERT_FALSE(good.empty());

  auto decodeAs = [&](const Bytes& bytes, bool* freedClean) {
    TestContext ctx;
    std::unique_ptr<ASN1OCTET[]> msg(new ASN1OCTET[bytes.size() ? bytes.size() : 1]);
    if (!bytes.empty()) memcpy(msg.get(), bytes.data(), bytes.size());
    rtInitContextBuffer(ctx.get(), msg.get(), (int)bytes.size());
    Storage value(ops.size);
    int stat = ops.decode(ctx.get(), value.get());
    ops.release(ctx.get(), value.get());
    *freedClean = liveHeapElements(ctx.get()) == 0;
    return stat;
  };
  bool clean;
  for (size_t n = 0; n < good.size(); ++n) {
    Bytes prefix(good.begin(), good.begin() + (long)n);
    EXPECT_LT(decodeAs(prefix, &clean), 0) << ops.name << " cut to " << n << " octets";
  }
  for (size_t i = 0; i < good.size(); ++i) {
    for (ASN1OCTET flip : {0x01, 0x80, 0xFF}) {
      Bytes bad = good;
      bad[i] ^= flip;
      if (decodeAs(bad, &clean) == 0) {
        EXPECT_TRUE(clean) << ops.name << " octet " << i << " ^ " << (int)flip;
      }
    }
  }
}

std::string typeName(const ::testing::TestParamInfo<unsigned>& info) {
  std::string name = std::string(qnTypeOps[info.param].module) + "_" + qnTypeOps[info.param].name;
  for (char& c : name) {
    if (!isalnum((unsigned char)c)) c = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(AllTypes, GeneratedType, ::testing::Range(0u, qnTypeOpsCount), typeName);

TEST(GeneratedTypes, TableCoversTheCatalogue) {
  // The catalogue has 534 types; a generator that drops one drops its tests with it.
  EXPECT_EQ(qnTypeOpsCount, 534u);
}

}  // namespace
