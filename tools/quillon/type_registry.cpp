#include "type_registry.h"

#include <string.h>

namespace quillon_tool {

namespace {

// ASN.1 names may carry hyphens; generated names have underscores in their place.
std::string generatedForm(std::string name) {
  for (char& c : name) {
    if (c == '-') c = '_';
  }
  return name;
}

}  // namespace

std::string qualifiedName(const TypeEntry& entry) {
  return std::string(entry.module) + "." + entry.name;
}

const TypeEntry* findTypeByGeneratedName(const char* name) {
  for (size_t i = 0; i < kTypeTableSize; ++i) {
    if (strcmp(kTypeTable[i].name, name) == 0) return &kTypeTable[i];
  }
  return nullptr;
}

const TypeEntry* findType(const std::string& name) {
  // Module names contain hyphens and never dots, so the last dot separates the type.
  size_t dot = name.rfind('.');
  std::string module = dot == std::string::npos ? std::string() : name.substr(0, dot);
  std::string type = generatedForm(dot == std::string::npos ? name : name.substr(dot + 1));
  const TypeEntry* entry = findTypeByGeneratedName(type.c_str());
  if (entry == nullptr || (!module.empty() && module != entry->module)) return nullptr;
  return entry;
}

}  // namespace quillon_tool
