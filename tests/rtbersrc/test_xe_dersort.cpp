// DER order of SET OF components, checked against a plain lexicographic sort of the same
// octet strings (which orders a prefix before the longer string it begins, as DER does).
#include <gtest/gtest.h>

#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include <algorithm>
#include <random>

#include "encode_harness.h"

namespace {

// Writes the components in the order given, each followed by its location, as an encoder of a
// SET OF does, then sorts them; returns the status and leaves the list to be checked.
int encodeAndSort(EncodeHarness& h, const std::vector<Bytes>& components, _Asn1RTDList* list) {
  rtDListInit(list);
  for (const Bytes& c : components) {
    int n = xe_memcpy(h.ctxt(), c.data(), (ASN1UINT)c.size());
    if (n < 0) return n;
    auto* loc = (Asn1BufLocDescr*)rtMemHeapAlloc(&h.ctxt()->memHeap, sizeof(Asn1BufLocDescr));
    xe_getBufLocDescr(h.ctxt(), n, loc);
    rtDListAppend(h.ctxt(), list, loc);
  }
  return xe_derCanonicalSort(h.ctxt(), list);
}

Bytes concatSorted(std::vector<Bytes> components) {
  std::sort(components.begin(), components.end());
  Bytes out;
  for (const Bytes& c : components) out.insert(out.end(), c.begin(), c.end());
  return out;
}

TEST(XeDerSort, PrefixPairsEqualElementsAndOrder) {
  std::vector<Bytes> components = {bytesOf({0x01, 0x02, 0x03}), bytesOf({0xFF}),
                                   bytesOf({0x01, 0x02}),        bytesOf({0x00, 0x05}),
                                   bytesOf({0x01, 0x02}),        bytesOf({0x01, 0x02, 0x00})};
  EncodeHarness h;
  _Asn1RTDList list;
  EXPECT_EQ(encodeAndSort(h, components, &list), 13);
  EXPECT_EQ(h.hex(), "00 05 01 02 01 02 01 02 00 01 02 03 FF");
  EXPECT_EQ(list.count, 0u);  // descriptors and nodes are released
  EXPECT_EQ(list.head, nullptr);
}

TEST(XeDerSort, AnyInputOrderGivesTheSortedOctets) {
  std::mt19937 rng(3);
  for (int round = 0; round < 300; ++round) {
    std::vector<Bytes> components(1 + rng() % 12);
    for (Bytes& c : components) {
      c.resize(1 + rng() % 4);
      for (uint8_t& o : c) o = (uint8_t)(rng() % 3);  // small alphabet: prefixes and ties
    }
    EncodeHarness h(16);  // small, so components straddle growth
    _Asn1RTDList list;
    Bytes expected = concatSorted(components);
    ASSERT_EQ(encodeAndSort(h, components, &list), (int)expected.size());
    EXPECT_EQ(h.written(), expected) << "round " << round;
  }
}

TEST(XeDerSort, SortedSetGetsItsHeader) {
  // Written last first, so the list is in descending order and nothing needs to move.
  std::vector<Bytes> components = {bytesOf({0x02, 0x01, 0x09}), bytesOf({0x02, 0x01, 0x03})};
  EncodeHarness h;
  _Asn1RTDList list;
  int total = encodeAndSort(h, components, &list);
  ASSERT_EQ(total, 6);
  EXPECT_EQ(xe_tag_len(h.ctxt(), TM_CONS | ASN_ID_SET, total), 8);
  EXPECT_EQ(h.hex(), "31 06 02 01 03 02 01 09");
}

TEST(XeDerSort, DescriptorsOutsideTheEncodingAreRefused) {
  EncodeHarness h;
  const ASN1OCTET data[] = {1, 2, 3};
  ASSERT_EQ(xe_memcpy(h.ctxt(), data, 3), 3);
  Asn1BufLocDescr bogus[] = {{3, 2}, {5, 100000}, {4, 2}, {-1, 0}};
  for (const Asn1BufLocDescr& d : bogus) {
    _Asn1RTDList list;
    rtDListInit(&list);
    auto* good = (Asn1BufLocDescr*)rtMemHeapAlloc(&h.ctxt()->memHeap, sizeof(Asn1BufLocDescr));
    xe_getBufLocDescr(h.ctxt(), 3, good);
    auto* bad = (Asn1BufLocDescr*)rtMemHeapAlloc(&h.ctxt()->memHeap, sizeof(Asn1BufLocDescr));
    *bad = d;
    rtDListAppend(h.ctxt(), &list, good);
    rtDListAppend(h.ctxt(), &list, bad);
    int n = xe_derCanonicalSort(h.ctxt(), &list);
    // {3, 2} lies in bounds, but the two together pass what was written.
    EXPECT_EQ(n, ASN_E_BADVALUE) << d.numocts << "@" << d.offset;
    EXPECT_EQ(list.count, 0u);
  }
  EXPECT_EQ(h.hex(), "01 02 03");
  EXPECT_EQ(xe_derCanonicalSort(h.ctxt(), nullptr), 0);
}

}  // namespace
