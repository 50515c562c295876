// A walk over the open-type values of a decoded value: every extension, attribute value,
// algorithm parameter, content and CMP info value that a table constraint ties to an object
// identifier. The walkers are generated with the type table (quillon_types.cpp) from the same
// object sets that the generated decoders use, and descend into each decoded value in turn, so
// that a caller sees which values reached their types and which stayed octets.
#ifndef QUILLON_TOOL_OPEN_TYPES_H
#define QUILLON_TOOL_OPEN_TYPES_H

#include <quillon/asn1type.h>

namespace quillon_tool {

struct OpenTypeVisit {
  const char* objectSet;      // the object set that governs the value, e.g. "ExtensionSet"
  const ASN1OBJID* key;       // the identifier that selects the object
  const Asn1TObject* object;  // the encoding and, once decoded, the typed value
  // The generated name of the type the object set gives for `key`; null when the set has no
  // object with that identifier, so the value is expected to stay octets.
  const char* carriedType;
  int depth;                  // open types entered on the way here (0 at the message's level)
};

class OpenTypeVisitor {
 public:
  virtual ~OpenTypeVisitor() = default;
  // Called for each open-type value that has an encoding, before the walk enters its typed
  // value (when there is one).
  virtual void visit(const OpenTypeVisit& visit) = 0;
};

}  // namespace quillon_tool

#endif
