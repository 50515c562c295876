// Every generated type by name, with its codec functions behind one signature, so that a
// command line or a test can pick a type at run time. The table itself (quillon_types.cpp)
// is written by the compiler (asn1gen.registry) from the module texts.
#ifndef QUILLON_TOOL_TYPE_REGISTRY_H
#define QUILLON_TOOL_TYPE_REGISTRY_H

#include <quillon/asn1type.h>

#include <stddef.h>

#include <string>
#include <vector>

namespace quillon_tool {

class OpenTypeVisitor;

struct TypeEntry {
  const char* module;  // ASN.1 module name, e.g. "PKIX1Explicit88"
  const char* name;    // generated name, e.g. "Certificate" or "Gost28147_89_ParamSet"
  size_t size;         // sizeof the value type ASN1T_<name>
  // asn1D_<name>(pctxt, value, ASN1EXPL, 0)
  int (*decode)(ASN1CTXT* pctxt, void* value);
  // asn1E_<name>(pctxt, value, ASN1EXPL)
  int (*encode)(ASN1CTXT* pctxt, void* value);
  // asn1Free_<name>(pctxt, value)
  void (*release)(ASN1CTXT* pctxt, void* value);
  // Visits every open-type value inside a decoded value (see open_types.h).
  void (*walk)(const void* value, OpenTypeVisitor& visitor, int depth);
};

// The generated table, in catalogue order: module by module, each module's types in order.
extern const TypeEntry kTypeTable[];
extern const size_t kTypeTableSize;

// "Module.Type" of an entry.
std::string qualifiedName(const TypeEntry& entry);

// A type by its generated name ("Certificate"), its ASN.1 name with hyphens
// ("Gost28147-89-ParamSet"), or either one qualified by its module ("PKIX1Explicit88.Name").
// Null when no type has that name.
const TypeEntry* findType(const std::string& name);

// An open-type member's value by its generated type name; null when unknown.
const TypeEntry* findTypeByGeneratedName(const char* name);

}  // namespace quillon_tool

#endif
