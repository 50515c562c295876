// The message corpus of tests/data (made by tests/data/make-corpus.sh) as the corpus tests
// see it: the manifest's entries, each file's message octets, and a census of the open-type
// values that a decoded message holds.
#ifndef QUILLON_TESTS_CORPUS_H
#define QUILLON_TESTS_CORPUS_H

#include <quillon/asn1type.h>

#include <stdint.h>

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "open_types.h"
#include "type_registry.h"

namespace corpus {

using Octets = std::vector<uint8_t>;

struct Entry {
  std::string file;  // below tests/data, e.g. "cert/full-extensions.der"
  std::string kind;  // cert, crl, cms, ocsp, tsp, cmp, pkcs10, gost
  std::string type;  // Module.Type it must decode as
  // The notes as key=value words: "extensions", "reach" and "opaque" (lists are comma
  // separated).
  std::map<std::string, std::string> notes;

  bool isPem() const;
  bool isBer() const;
  bool isDer() const { return !isPem() && !isBer(); }
  bool refused() const { return notes.count("refused") != 0; }
  // The list of a note, empty when the entry has none.
  std::vector<std::string> noteList(const std::string& key) const;
};

// Names a parameterised test's entry by its file in test output.
void PrintTo(const Entry& entry, std::ostream* os);

// tests/data: $QN_TEST_DATA when set, else the folder the build was configured with.
std::string dataDir();
// Every entry of tests/data/MANIFEST, in its order.
const std::vector<Entry>& manifest();
// The entries our modules take, in every form (DER, PEM, BER).
std::vector<Entry> decodableEntries();
// The entries of DER files our modules take, one per distinct message.
std::vector<Entry> derEntries();
// The entries our modules refuse (note "refused").
std::vector<Entry> refusedEntries();

// The contents of a file; fails the calling test when it cannot be read.
Octets readFile(const std::string& path);
// The message of a corpus file: its octets, or the one block of a PEM file.
Octets message(const Entry& entry);
// The DER that a file must re-encode to: the file itself, the DER of a PEM file, or for a
// BER file its DER twin (the .der of the same name).
Octets expectedDer(const Entry& entry);

// A file's type from the registry; fails the calling test when the registry lacks it.
const quillon_tool::TypeEntry& typeOf(const std::string& qualifiedName);

std::string dottedOid(const ASN1OBJID& oid);

// Every open-type value of a decoded message, as the generated walkers report them.
struct OpenTypeCensus : quillon_tool::OpenTypeVisitor {
  struct Item {
    std::string set;
    std::string oid;
    std::string carriedType;  // empty when the set does not know the identifier
    bool decoded;
    int depth;
  };

  void visit(const quillon_tool::OpenTypeVisit& v) override;
  // Carried types that were reached as decoded values.
  std::set<std::string> typedValues() const;
  // Identifiers whose values stayed octets.
  std::set<std::string> opaqueOids() const;
  int count(const std::string& set) const;

  std::vector<Item> items;
};

}  // namespace corpus

#endif
