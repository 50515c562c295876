#include "corpus.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "message_input.h"

namespace corpus {

namespace {

bool endsWith(const std::string& s, const char* suffix) {
  std::string tail(suffix);
  return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::string part;
  std::istringstream in(text);
  while (std::getline(in, part, separator)) {
    if (!part.empty()) parts.push_back(part);
  }
  return parts;
}

Entry parseLine(const std::string& line) {
  std::vector<std::string> columns;
  std::string column;
  std::istringstream in(line);
  while (std::getline(in, column, '\t')) columns.push_back(column);
  Entry entry;
  entry.file = columns.at(0);
  entry.kind = columns.at(1);
  entry.type = columns.at(2);
  for (const std::string& word : split(columns.size() > 3 ? columns[3] : "", ' ')) {
    size_t eq = word.find('=');
    entry.notes[word.substr(0, eq)] = eq == std::string::npos ? "" : word.substr(eq + 1);
  }
  return entry;
}

std::vector<Entry> readManifest() {
  std::vector<Entry> entries;
  std::ifstream in(dataDir() + "/MANIFEST");
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line[0] != '#') entries.push_back(parseLine(line));
  }
  return entries;
}

}  // namespace

void PrintTo(const Entry& entry, std::ostream* os) { *os << entry.file; }

bool Entry::isPem() const { return endsWith(file, ".pem"); }

bool Entry::isBer() const { return endsWith(file, ".ber"); }

std::vector<std::string> Entry::noteList(const std::string& key) const {
  auto it = notes.find(key);
  return it == notes.end() ? std::vector<std::string>() : split(it->second, ',');
}

std::string dataDir() {
  const char* dir = getenv("QN_TEST_DATA");
  return dir != nullptr && *dir != '\0' ? dir : QN_CORPUS_DEFAULT_DIR;
}

const std::vector<Entry>& manifest() {
  static const std::vector<Entry> entries = readManifest();
  return entries;
}

std::vector<Entry> selected(bool (*wanted)(const Entry&)) {
  std::vector<Entry> entries;
  for (const Entry& entry : manifest()) {
    if (wanted(entry)) entries.push_back(entry);
  }
  return entries;
}

std::vector<Entry> decodableEntries() {
  return selected([](const Entry& e) { return !e.refused(); });
}

std::vector<Entry> derEntries() {
  return selected([](const Entry& e) { return e.isDer() && !e.refused(); });
}

std::vector<Entry> refusedEntries() {
  return selected([](const Entry& e) { return e.refused(); });
}

Octets readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in.good()) << "cannot read " << path;
  return Octets(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

Octets message(const Entry& entry) {
  Octets content = readFile(dataDir() + "/" + entry.file);
  if (!entry.isPem()) return content;
  std::vector<quillon_tool::InputMessage> blocks;
  std::string error;
  EXPECT_TRUE(quillon_tool::parsePem(content, blocks, error)) << entry.file << ": " << error;
  EXPECT_EQ(blocks.size(), 1u) << entry.file;
  return blocks.empty() ? Octets() : blocks[0].octets;
}

Octets expectedDer(const Entry& entry) {
  if (!entry.isBer()) return message(entry);
  std::string twin = entry.file.substr(0, entry.file.size() - 4) + ".der";
  return readFile(dataDir() + "/" + twin);
}

const quillon_tool::TypeEntry& typeOf(const std::string& qualifiedName) {
  const quillon_tool::TypeEntry* type = quillon_tool::findType(qualifiedName);
  if (type == nullptr) {
    ADD_FAILURE() << "no type " << qualifiedName << " in the registry";
    static const quillon_tool::TypeEntry none = {};
    return none;
  }
  return *type;
}

std::string dottedOid(const ASN1OBJID& oid) {
  std::string text;
  for (ASN1UINT i = 0; i < oid.numids && i < ASN_K_MAXSUBIDS; ++i) {
    if (i) text += '.';
    text += std::to_string(oid.subid[i]);
  }
  return text;
}

void OpenTypeCensus::visit(const quillon_tool::OpenTypeVisit& v) {
  items.push_back(Item{v.objectSet, dottedOid(*v.key), v.carriedType ? v.carriedType : "",
                       v.object->decoded != nullptr, v.depth});
}

std::set<std::string> OpenTypeCensus::typedValues() const {
  std::set<std::string> types;
  for (const Item& item : items) {
    if (item.decoded) types.insert(item.carriedType);
  }
  return types;
}

std::set<std::string> OpenTypeCensus::opaqueOids() const {
  std::set<std::string> oids;
  for (const Item& item : items) {
    if (!item.decoded) oids.insert(item.oid);
  }
  return oids;
}

int OpenTypeCensus::count(const std::string& set) const {
  int n = 0;
  for (const Item& item : items) n += item.set == set;
  return n;
}

}  // namespace corpus
