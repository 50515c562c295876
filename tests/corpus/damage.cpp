#include "damage.h"

#include <string.h>

#include <memory>

#include "heap_hooks.h"
#include "message_codec.h"

namespace corpus {

namespace {

// The depth of nesting the scanner follows; real messages stay far below it.
const int kMaxDepth = 64;

void scanContents(const Octets& msg, size_t begin, size_t end, int depth,
                  std::vector<Element>& out);

// True when [begin, end) is a run of whole elements.
bool holdsElements(const Octets& msg, size_t begin, size_t end) {
  size_t at = begin;
  while (at < end) {
    Element e;
    if (!readElement(msg, at, e) || e.indefinite || e.contentAt + e.length > end) return false;
    at = e.contentAt + e.length;
  }
  return at == end && end > begin;
}

void scanElement(const Octets& msg, const Element& e, int depth, std::vector<Element>& out) {
  out.push_back(e);
  if (depth >= kMaxDepth) return;
  uint8_t id = msg[e.tagAt];
  size_t end = e.contentAt + e.length;
  if (id & 0x20) {
    scanContents(msg, e.contentAt, end, depth + 1, out);
  } else if (id == 0x04 && holdsElements(msg, e.contentAt, end)) {
    scanContents(msg, e.contentAt, end, depth + 1, out);
  } else if (id == 0x03 && e.length > 1 && msg[e.contentAt] == 0 &&
             holdsElements(msg, e.contentAt + 1, end)) {
    scanContents(msg, e.contentAt + 1, end, depth + 1, out);
  }
}

void scanContents(const Octets& msg, size_t begin, size_t end, int depth,
                  std::vector<Element>& out) {
  size_t at = begin;
  while (at < end) {
    Element e;
    if (!readElement(msg, at, e) || e.indefinite || e.contentAt + e.length > end) return;
    scanElement(msg, e, depth, out);
    at = e.contentAt + e.length;
  }
}

void putLength(Octets& out, size_t length) {
  if (length < 0x80) {
    out.push_back(static_cast<uint8_t>(length));
    return;
  }
  Octets digits;
  for (size_t v = length; v != 0; v >>= 8) digits.insert(digits.begin(), static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(0x80 | digits.size()));
  out.insert(out.end(), digits.begin(), digits.end());
}

}  // namespace

bool readElement(const Octets& msg, size_t at, Element& e) {
  size_t n = msg.size();
  if (at >= n) return false;
  e.tagAt = at;
  size_t p = at + 1;
  if ((msg[at] & 0x1F) == 0x1F) {
    while (p < n && (msg[p] & 0x80)) ++p;
    if (p >= n) return false;
    ++p;
  }
  if (p >= n) return false;
  e.lengthAt = p;
  uint8_t first = msg[p];
  e.indefinite = first == 0x80;
  e.length = 0;
  if (first < 0x80 || e.indefinite) {
    e.lengthSize = 1;
    e.length = e.indefinite ? 0 : first;
  } else {
    e.lengthSize = 1 + (first & 0x7F);
    if (e.lengthSize > 5 || p + e.lengthSize > n) return false;
    for (size_t i = 1; i < e.lengthSize; ++i) e.length = e.length << 8 | msg[p + i];
  }
  e.contentAt = p + e.lengthSize;
  return e.indefinite || e.contentAt + e.length <= n;
}

std::vector<Element> scanElements(const Octets& msg) {
  std::vector<Element> out;
  Element outer;
  if (readElement(msg, 0, outer) && !outer.indefinite) scanElement(msg, outer, 0, out);
  return out;
}

Octets withLength(const Octets& msg, const Element& e, size_t length) {
  Octets out = msg;
  if (e.lengthSize == 1) {
    out[e.lengthAt] = static_cast<uint8_t>(length);
  } else {
    for (size_t i = e.lengthSize - 1; i >= 1; --i, length >>= 8) {
      out[e.lengthAt + i] = static_cast<uint8_t>(length);
    }
  }
  return out;
}

Octets withContentsCut(const Octets& msg, const Element& outer, size_t keep) {
  Octets out(msg.begin() + outer.tagAt, msg.begin() + outer.lengthAt);
  putLength(out, keep);
  out.insert(out.end(), msg.begin() + outer.contentAt, msg.begin() + outer.contentAt + keep);
  return out;
}

Outcome decodeDamaged(const quillon_tool::TypeEntry& type, const uint8_t* data, size_t length) {
  Outcome outcome = {};
  std::unique_ptr<uint8_t[]> exact(new uint8_t[length ? length : 1]);
  if (length) memcpy(exact.get(), data, length);
  HookScope hooks;
  {
    quillon_tool::MessageCodec codec(type);
    outcome.status = codec.decode(exact.get(), length);
    const ASN1ErrInfo& err = codec.context()->errInfo;
    outcome.errorRecorded = err.status == outcome.status && err.stkx >= 1;
    if (outcome.status == 0) outcome.encodeStatus = codec.encode(outcome.reencoded);
  }
  outcome.leakedBlocks = hooks.log().outstanding;
  return outcome;
}

}  // namespace corpus
