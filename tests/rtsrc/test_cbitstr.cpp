// The bit string class: growth and bounds, the three kinds of storage, and every operation
// checked against a plain model of the bits over random sequences.

#include <quillon/asn1CBitStr.h>

#include <gtest/gtest.h>

#include <string.h>

#include <random>
#include <vector>

namespace {

// Exposes what the class keeps to itself: the room in the array and who owns it.
struct BitStrProbe : ASN1CBitStr {
  using ASN1CBitStr::ASN1CBitStr;
  int capacity() const { return mUnitsAllocated; }
  bool ownsMemory() const { return mDynAlloc != 0; }
};

using Octets = std::vector<ASN1OCTET>;

Octets octets(const ASN1OCTET* p, size_t n) { return Octets(p, p + n); }

const char* recordedModule(ASN1CType& c) {
  const ASN1ErrInfo& e = c.getCtxtPtr()->errInfo;
  return e.stkx > 0 ? e.stack[0].module : "";
}

class CBitStrTest : public ::testing::Test {
 protected:
  ASN1CtxtPtr ctxt{new ASN1Context()};
  ASN1CTXT* pctxt() { return ctxt->getPtr(); }
};

TEST_F(CBitStrTest, AnUnboundedStringGrowsAKilobyteBeyondTheNeed) {
  BitStrProbe bits(*ctxt);
  EXPECT_EQ(bits.set(10000), 0);
  EXPECT_EQ(bits.capacity(), 10000 / 8 + 1 + 1024);
  EXPECT_EQ(bits.size(), 10000 / 8 + 1);
  EXPECT_EQ(bits.length(), 10001u);
  EXPECT_EQ(static_cast<ASN1TDynBitStr>(bits).numbits, 10001u);
  EXPECT_TRUE(bits.ownsMemory());
  // Within the room no reallocation happens; beyond it the bits move with the array.
  const ASN1OCTET* before = static_cast<ASN1TDynBitStr>(bits).data;
  EXPECT_EQ(bits.set(18000), 0);
  EXPECT_EQ(static_cast<ASN1TDynBitStr>(bits).data, before);
  EXPECT_EQ(bits.set(20000), 0);
  EXPECT_EQ(bits.capacity(), 20000 / 8 + 1 + 1024);
  EXPECT_TRUE(bits.get(10000) && bits.get(18000) && bits.get(20000));
  EXPECT_EQ(bits.cardinality(), 3);
  EXPECT_FALSE(bits.get(20001));
  EXPECT_EQ(bits.set(0xFFFFFFFFu), ASN_E_OUTOFBND);
}

TEST_F(CBitStrTest, GrowingNeverShowsOldHeapContents) {
  // Freed memory full of set bits, for the growing string to be given back.
  {
    ASN1CBitStr dirty(*ctxt);
    ASSERT_EQ(dirty.set(0, 40000), 0);
  }
  ASN1CBitStr bits(*ctxt);
  for (ASN1UINT bit = 0; bit < 60000; bit += 8500) ASSERT_EQ(bits.set(bit), 0);
  EXPECT_EQ(bits.cardinality(), 8);
}

TEST_F(CBitStrTest, ABoundedStringRefusesBitsBeyondItsMaximumOrItsArray) {
  ASN1OCTET array[2] = {0, 0};
  ASN1UINT numbits = 0;
  ASN1CBitStr bits(*ctxt, array, numbits, 16);
  EXPECT_EQ(bits.set(17), ASN_E_OUTOFBND);
  EXPECT_STREQ(recordedModule(bits), "rtsrc/ASN1CBitStr");
  rtErrReset(&pctxt()->errInfo);
  // 16 is not above the maximum, but it needs a third byte.
  EXPECT_EQ(bits.set(16), ASN_E_INVLEN);
  EXPECT_EQ(pctxt()->errInfo.status, ASN_E_INVLEN);
  EXPECT_EQ(bits.set(15), 0);
  EXPECT_EQ(numbits, 16u);
  EXPECT_EQ(array[1], 0x01);
  EXPECT_EQ(bits.set(8, 18), ASN_E_OUTOFBND);
  EXPECT_EQ(bits.invert(16), ASN_E_INVLEN);
  EXPECT_EQ(array[1], 0x01);

  BitStrProbe sized(*ctxt, 12u);
  EXPECT_EQ(sized.capacity(), 2);
  EXPECT_EQ(sized.set(12), 0);  // the quirk again: inside the array, past the maximum
  EXPECT_EQ(sized.set(13), ASN_E_OUTOFBND);
  BitStrProbe unsized(*ctxt, 0u);
  EXPECT_EQ(unsized.set(100), 0);
  BitStrProbe uninitialised;
  EXPECT_EQ(uninitialised.set(1), ASN_E_OUTOFBND);
  EXPECT_EQ(uninitialised.set(0), ASN_E_INVLEN);
}

TEST_F(CBitStrTest, ACallersArrayIsCutToItsCountAndMaximum) {
  ASN1OCTET array[4] = {0xFF, 0xFF, 0xAA, 0x55};
  ASN1UINT numbits = 10;
  BitStrProbe bits(*ctxt, array, numbits, 32);
  EXPECT_EQ(octets(array, 4), (Octets{0xFF, 0xC0, 0x00, 0x00}));
  EXPECT_EQ(bits.size(), 2);
  EXPECT_EQ(bits.capacity(), 4);
  EXPECT_FALSE(bits.ownsMemory());

  ASN1OCTET small[1] = {0xFF};
  ASN1UINT tooMany = 20;
  ASN1CBitStr cut(*ctxt, small, tooMany, 5);
  EXPECT_EQ(tooMany, 5u);
  EXPECT_EQ(small[0], 0xF8);
  EXPECT_EQ(cut.length(), 5u);
}

TEST_F(CBitStrTest, ACallersValueIsChangedInPlaceUntilItMustGrow) {
  ASN1OCTET array[2] = {0x80, 0x40};
  ASN1TDynBitStr value(10, array);
  const ASN1OCTET* grown;
  {
    BitStrProbe bits(*ctxt, value);
    EXPECT_EQ(bits.size(), 2);
    EXPECT_EQ(bits.set(3), 0);
    EXPECT_EQ(array[0], 0x90);
    EXPECT_EQ(value.numbits, 10u);
    EXPECT_EQ(bits.set(20), 0);
    grown = value.data;
    EXPECT_NE(grown, array);
    EXPECT_EQ(value.numbits, 21u);
    EXPECT_EQ(octets(grown, 3), (Octets{0x90, 0x40, 0x08}));
    EXPECT_EQ(array[0], 0x90);  // the caller's array is left as it was at the move
    EXPECT_TRUE(bits.ownsMemory());
    EXPECT_EQ(rtMemHeapCheckPtr(&pctxt()->memHeap, grown), 1);
  }
  // The object's own memory goes back to the heap with it.
  EXPECT_EQ(rtMemHeapCheckPtr(&pctxt()->memHeap, grown), 0);

  ASN1TDynBitStr empty;
  BitStrProbe fromEmpty(*ctxt, empty);
  EXPECT_EQ(fromEmpty.size(), 0);
  EXPECT_EQ(fromEmpty.capacity(), 0);
  EXPECT_EQ(fromEmpty.set(0), 0);
  EXPECT_EQ(empty.numbits, 1u);
  EXPECT_EQ(empty.data[0], 0x80);
}

TEST_F(CBitStrTest, InitCountsBytesEightTimesOverAsDocumented) {
  ASN1OCTET array[32] = {0xA0};
  ASN1UINT numbits = 2;
  BitStrProbe bits(*ctxt);
  EXPECT_EQ(bits.set(500), 0);
  const ASN1OCTET* own = static_cast<ASN1TDynBitStr>(bits).data;
  bits.init(array, numbits, 4);
  EXPECT_EQ(rtMemHeapCheckPtr(&pctxt()->memHeap, own), 0);
  EXPECT_EQ(bits.size(), 16);
  EXPECT_EQ(bits.capacity(), 32);
  EXPECT_FALSE(bits.ownsMemory());
  EXPECT_EQ(array[0], 0xA0);  // contents are not touched
  EXPECT_EQ(bits.cardinality(), 2);
  bits.recalculateUnitsUsed();
  EXPECT_EQ(bits.size(), 1);
  EXPECT_EQ(numbits, 3u);

  ASN1OCTET valueBits[1] = {0x40};
  ASN1TDynBitStr value(2, valueBits);
  bits.init(value);
  EXPECT_EQ(bits.size(), 1);
  EXPECT_EQ(bits.set(9), 0);
  EXPECT_EQ(value.numbits, 10u);
}

// The random sequences combine with other arrays; these are the cases they never make.
TEST_F(CBitStrTest, CombiningWithItselfOrWithNothing) {
  ASN1CBitStr bits(*ctxt);
  EXPECT_EQ(bits.set(0, 16), 0);
  EXPECT_EQ(bits.clear(5), 0);
  // With itself: "and" and "or" change nothing, "xor" empties the string.
  const ASN1OCTET* own = static_cast<ASN1TDynBitStr>(bits).data;
  EXPECT_EQ(bits.doAnd(own, 16), 0);
  EXPECT_EQ(bits.doOr(own, 16), 0);
  EXPECT_EQ(bits.cardinality(), 15);
  EXPECT_EQ(bits.doXor(own, 16), 0);
  EXPECT_EQ(bits.length(), 0u);
  EXPECT_EQ(bits.doXor(nullptr, 8), ASN_E_INVPARAM);
  EXPECT_EQ(bits.doOr(nullptr, 8), ASN_E_INVPARAM);
}

TEST_F(CBitStrTest, BytesAndRangesAreCopiedOutWithTheirSizeChecked) {
  ASN1CBitStr bits(*ctxt);
  EXPECT_EQ(bits.set(1), 0);
  EXPECT_EQ(bits.set(9, 12), 0);
  ASN1OCTET out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
  EXPECT_EQ(bits.getBytes(out, 1), ASN_E_STROVFLW);
  EXPECT_EQ(out[0], 0xEE);
  EXPECT_EQ(bits.getBytes(out, 4), 0);
  EXPECT_EQ(octets(out, 4), (Octets{0x40, 0x70, 0x00, 0x00}));
  ASN1OCTET range[2] = {0xEE, 0xEE};
  EXPECT_EQ(bits.get(1, 13, range, 2), 0);  // bits 1..12: 1, then 9..11
  EXPECT_EQ(octets(range, 2), (Octets{0x80, 0xE0}));
  EXPECT_EQ(bits.get(1, 18, range, 2), ASN_E_STROVFLW);
  EXPECT_EQ(bits.get(5, 4, range, 2), ASN_E_INVPARAM);
  EXPECT_EQ(bits.get(4, 4, nullptr, 0), 0);
}

TEST_F(CBitStrTest, CopiesOwnTheirBitsAndKeepOrDropTheMaximum) {
  ASN1OCTET array[2] = {0x81, 0x00};
  ASN1UINT numbits = 8;
  BitStrProbe original(*ctxt, array, numbits, 16);
  BitStrProbe copy(original);
  BitStrProbe growing(original, 1);
  EXPECT_TRUE(copy.ownsMemory());
  EXPECT_EQ(copy.getCtxtPtr(), original.getCtxtPtr());
  EXPECT_EQ(copy.length(), 8u);
  EXPECT_EQ(copy.set(3), 0);
  EXPECT_EQ(array[0], 0x81);
  EXPECT_EQ(copy.set(15), 0);
  EXPECT_EQ(copy.set(16), ASN_E_INVLEN);
  EXPECT_EQ(growing.set(100), 0);
  EXPECT_TRUE(growing.get(0) && growing.get(7) && growing.get(100));
  EXPECT_EQ(static_cast<ASN1TDynBitStr>(growing).numbits, 101u);
  EXPECT_EQ(original.cardinality(), 2);
}

// ---- Random sequences against a model ---------------------------------------------------

// The bits as a vector, with the class's rules for failing operations and bit counts.
class BitModel {
 public:
  // limit: bits the string has room for; max: the highest bit index it accepts at all.
  BitModel(ASN1UINT limit, ASN1UINT max) : limit_(limit), max_(max) {}

  bool fits(unsigned long long lastBit) const { return lastBit < limit_; }
  bool accepts(unsigned long long bit) const { return bit <= max_; }

  bool get(size_t i) const { return i < bits_.size() && bits_[i]; }
  void put(size_t i, bool v) {
    if (i >= bits_.size()) bits_.resize(i + 1, false);
    bits_[i] = v;
  }
  size_t length() const {
    for (size_t i = bits_.size(); i > 0; --i) {
      if (bits_[i - 1]) return i;
    }
    return 0;
  }
  int cardinality() const {
    int n = 0;
    for (bool b : bits_) n += b;
    return n;
  }

 private:
  std::vector<bool> bits_;
  ASN1UINT limit_;
  ASN1UINT max_;
};

std::vector<ASN1OCTET> packBits(const std::vector<bool>& bits, std::mt19937& rng) {
  std::vector<ASN1OCTET> packed((bits.size() + 7) / 8 + 1);
  for (auto& b : packed) b = static_cast<ASN1OCTET>(rng());  // unused bits hold noise
  for (size_t i = 0; i < bits.size(); ++i) {
    const ASN1OCTET mask = static_cast<ASN1OCTET>(0x80 >> (i % 8));
    packed[i / 8] = static_cast<ASN1OCTET>(bits[i] ? packed[i / 8] | mask : packed[i / 8] & ~mask);
  }
  return packed;
}

// Applies one random operation to both; returns a description for failure messages.
std::string applyRandomOperation(ASN1CBitStr& bs, BitModel& model, std::mt19937& rng) {
  auto pick = [&rng](unsigned n) { return static_cast<ASN1UINT>(rng() % n); };
  const ASN1UINT a = pick(200);
  const ASN1UINT b = a + pick(60);
  const unsigned op = pick(13);
  std::string what =
      "op " + std::to_string(op) + " a=" + std::to_string(a) + " b=" + std::to_string(b);
  int stat = 0;
  bool ok = true;
  switch (op) {
    case 0:
      stat = bs.set(a);
      if ((ok = model.fits(a))) model.put(a, true);
      break;
    case 1:
      stat = bs.set(a, b);
      if ((ok = a == b || model.fits(b - 1))) {
        for (ASN1UINT i = a; i < b; ++i) model.put(i, true);
      }
      break;
    case 2:
      stat = bs.clear(a);
      if ((ok = model.accepts(a))) model.put(a, false);
      break;
    case 3:
      stat = bs.clear(a, b);
      if ((ok = a == b || model.accepts(b - 1))) {
        for (ASN1UINT i = a; i < b; ++i) model.put(i, false);
      }
      break;
    case 4:
      stat = bs.invert(a);
      if ((ok = model.fits(a))) model.put(a, !model.get(a));
      break;
    case 5:
      stat = bs.invert(a, b);
      if ((ok = a == b || model.fits(b - 1))) {
        for (ASN1UINT i = a; i < b; ++i) model.put(i, !model.get(i));
      }
      break;
    case 6:
    case 7:
    case 8:
    case 9: {
      std::vector<bool> other(pick(220));
      for (size_t i = 0; i < other.size(); ++i) other[i] = pick(3) == 0;
      const std::vector<ASN1OCTET> packed = packBits(other, rng);
      const ASN1UINT count = static_cast<ASN1UINT>(other.size());
      auto theirs = [&other](size_t i) { return i < other.size() && other[i]; };
      const size_t span = std::max<size_t>(model.length(), other.size());
      if (op == 6) {
        stat = bs.doAnd(packed.data(), count);
        for (size_t i = 0; i < span; ++i) model.put(i, model.get(i) && theirs(i));
      } else if (op == 9) {
        stat = bs.doAndNot(packed.data(), count);
        for (size_t i = 0; i < span; ++i) model.put(i, model.get(i) && !theirs(i));
      } else {
        stat = op == 7 ? bs.doOr(packed.data(), count) : bs.doXor(packed.data(), count);
        // Room is made for the other's bytes, whatever their bits.
        if ((ok = count == 0 || model.fits((count + 7) / 8 * 8 - 1))) {
          for (size_t i = 0; i < span; ++i) {
            model.put(i, op == 7 ? model.get(i) || theirs(i) : model.get(i) != theirs(i));
          }
        }
      }
      what += " other=" + std::to_string(count);
      break;
    }
    case 10: {
      const ASN1UINT n = pick(40);
      stat = bs.shiftLeft(n);
      const size_t len = model.length();
      for (size_t i = 0; i < len; ++i) model.put(i, model.get(i + n));
      break;
    }
    case 11: {
      const ASN1UINT n = pick(40);
      const size_t len = model.length();
      stat = bs.shiftRight(n);
      if ((ok = len == 0 || model.fits(len - 1 + n))) {
        for (size_t i = len + n; i > 0; --i) model.put(i - 1, i - 1 >= n && model.get(i - 1 - n));
      }
      break;
    }
    default:
      bs.clear();
      for (size_t i = 0, len = model.length(); i < len; ++i) model.put(i, false);
      break;
  }
  if ((stat == 0) != ok) what += " status " + std::to_string(stat);
  return (stat == 0) == ok ? "" : what;
}

void runRandomSequence(ASN1CBitStr& bs, const ASN1UINT& numbits, BitModel& model, unsigned seed) {
  std::mt19937 rng(seed);
  for (int step = 0; step < 3000; ++step) {
    const std::string mismatch = applyRandomOperation(bs, model, rng);
    ASSERT_EQ(mismatch, "") << "step " << step;
    for (ASN1UINT i = 0; i < 320; ++i) {
      ASSERT_EQ(bs.get(i) != 0, model.get(i)) << "step " << step << " bit " << i;
    }
    const size_t len = model.length();
    ASSERT_EQ(bs.length(), len) << "step " << step;
    ASSERT_EQ(numbits, len) << "step " << step;
    ASSERT_EQ(bs.size(), static_cast<int>((len + 7) / 8)) << "step " << step;
    ASSERT_EQ(bs.cardinality(), model.cardinality()) << "step " << step;
    ASSERT_EQ(bs.unusedBitsInLastUnit(), len == 0 ? 0 : static_cast<int>((8 - len % 8) % 8));
  }
}

TEST_F(CBitStrTest, RandomOperationsOnAnUnboundedValueMatchTheModel) {
  ASN1TDynBitStr value;
  ASN1CBitStr bits(*ctxt, value);
  BitModel model(0xFFFFFFFFu, 0xFFFFFFFFu);
  runRandomSequence(bits, value.numbits, model, 20240601);
}

TEST_F(CBitStrTest, RandomOperationsOnABoundedArrayMatchTheModel) {
  ASN1OCTET array[16] = {};
  ASN1UINT numbits = 0;
  ASN1CBitStr bits(*ctxt, array, numbits, 128);
  BitModel model(128, 128);
  runRandomSequence(bits, numbits, model, 7);
  rtErrReset(&pctxt()->errInfo);
}

}  // namespace
