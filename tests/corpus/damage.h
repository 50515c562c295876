// Damaging real messages: the headers of every element of a DER message (found by a small
// TLV scanner that shares nothing with the library), and decodes of the damaged copies with
// what the corpus tests demand of each outcome.
#ifndef QUILLON_TESTS_CORPUS_DAMAGE_H
#define QUILLON_TESTS_CORPUS_DAMAGE_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

#include "type_registry.h"

namespace corpus {

using Octets = std::vector<uint8_t>;

// Where one element's header and contents lie in a message.
struct Element {
  size_t tagAt;       // offset of the identifier octets
  size_t lengthAt;    // offset of the length octets
  size_t lengthSize;  // number of length octets
  size_t contentAt;   // offset of the contents
  size_t length;      // contents length (0 for an indefinite length)
  bool indefinite;
};

// The header of the element at offset `at`; false when it is not a well-formed header.
bool readElement(const Octets& msg, size_t at, Element& element);

// Every element of a definite-length encoding, outermost first, descending into constructed
// elements and into OCTET STRING and BIT STRING contents that are themselves whole encodings
// (the extension values, the encapsulated contents).
std::vector<Element> scanElements(const Octets& msg);

// A copy of msg whose element has length `length`, written in the same number of octets.
Octets withLength(const Octets& msg, const Element& element, size_t length);

// The message made of the outer identifier, a definite length of `keep` and the first `keep`
// octets of the outer contents.
Octets withContentsCut(const Octets& msg, const Element& outer, size_t keep);

// What a decode of (damaged) octets gave: the status, whether the error record holds that
// status with at least one trace entry, and, after a success, the re-encoding.
struct Outcome {
  int status;
  bool errorRecorded;
  int encodeStatus;
  Octets reencoded;
  long leakedBlocks;  // heap blocks still allocated once the context is freed
};

// Decodes a copy of the octets held in a heap block of exactly their size, so that reading one
// octet too far is an out-of-bounds read for the sanitizer build, with the heap's allocations
// counted.
Outcome decodeDamaged(const quillon_tool::TypeEntry& type, const uint8_t* data, size_t length);

}  // namespace corpus

#endif
