"""The compiler's model of ASN.1 modules.

The parser builds these nodes from the text; the resolution, naming, tagging and
representation passes fill in the attributes marked "derived". Everything the back
end needs to emit code is reachable from a Module: its named types in generated
order, value constants, classes, information objects and object sets.
"""


class Node:
    """Base of every model node: remembers where in the text it came from."""

    loc = None
    module = None                       # the Module whose names this node uses

    def __repr__(self):
        fields = ", ".join("%s=%r" % (k, v) for k, v in vars(self).items()
                           if k != "loc" and not k.startswith("_"))
        return "%s(%s)" % (type(self).__name__, fields)


# ---------------------------------------------------------------- tags

class Tag(Node):
    """A tag as written: class, number and the EXPLICIT/IMPLICIT keyword (or None)."""

    def __init__(self, tag_class, number, mode, loc=None):
        self.tag_class = tag_class      # "UNIVERSAL", "APPLICATION", "CONTEXT", "PRIVATE"
        self.number = number            # int, or a Value naming an INTEGER constant
        self.mode = mode                # "EXPLICIT", "IMPLICIT" or None (module default)
        self.loc = loc
        self.forced_explicit = False    # derived: written IMPLICIT where no tag can be replaced


class WireTag:
    """A tag that appears in the encoding (derived): outermost first in a type's list."""

    CLASS_BITS = {"UNIVERSAL": 0x00000000, "APPLICATION": 0x40000000,
                  "CONTEXT": 0x80000000, "PRIVATE": 0xC0000000}

    def __init__(self, tag_class, number, constructed, explicit):
        self.tag_class = tag_class
        self.number = number
        self.constructed = constructed
        self.explicit = explicit        # True: wraps the inner encoding; False: replaces it

    def word(self):
        """The tag as the runtime's 32-bit ASN1TagType word."""
        return (self.CLASS_BITS[self.tag_class] | (0x20000000 if self.constructed else 0)
                | self.number)

    def __str__(self):
        cls = "" if self.tag_class == "CONTEXT" else self.tag_class + " "
        return "[%s%d]" % (cls, self.number)

    def __eq__(self, other):
        return (isinstance(other, WireTag) and self.tag_class == other.tag_class
                and self.number == other.number)

    def __hash__(self):
        return hash((self.tag_class, self.number))


# ---------------------------------------------------------------- types

class Type(Node):
    """Base of type nodes. `tags` and `constraints` are as written; `wire_tags`,
    `repr` and `name` are derived."""

    kind = "?"

    def __init__(self, loc=None):
        self.loc = loc
        self.tags = []
        self.constraints = []
        self.wire_tags = None           # derived: list of WireTag, outermost first
        self.repr = None                # derived: represent.Representation
        self.name = None                # derived: the generated name when it has one
        self.module = None              # derived: the Module this node belongs to
        self.instance_of = None         # derived: the parameterised TypeAssignment it instantiates
        self.automatic_tag = False      # derived: its first tag was given by AUTOMATIC TAGS


class PrimitiveType(Type):
    """BOOLEAN, NULL, OCTET STRING, OBJECT IDENTIFIER, RELATIVE-OID, REAL, the
    character string and time types, EXTERNAL, ObjectDescriptor."""

    def __init__(self, keyword, loc=None):
        super().__init__(loc)
        self.kind = keyword


class NamedNumber(Node):
    def __init__(self, name, value, loc=None):
        self.name = name
        self.value = value              # int, or a Value before resolution
        self.loc = loc


class IntegerType(Type):
    kind = "INTEGER"

    def __init__(self, named_numbers, loc=None):
        super().__init__(loc)
        self.named_numbers = named_numbers


class EnumeratedType(Type):
    kind = "ENUMERATED"

    def __init__(self, items, extensible, additions, loc=None):
        super().__init__(loc)
        self.items = items              # root enumerations
        self.extensible = extensible
        self.additions = additions      # enumerations after the "..."


class BitStringType(Type):
    kind = "BIT STRING"

    def __init__(self, named_bits, loc=None):
        super().__init__(loc)
        self.named_bits = named_bits


class Component(Node):
    """A component of a SEQUENCE or SET, or an alternative of a CHOICE."""

    def __init__(self, name, type_, optional=False, default=None, extension=False,
                 loc=None):
        self.name = name
        self.type = type_
        self.optional = optional
        self.default = default          # Value, resolved in place
        self.extension = extension      # True for components after the "..."
        self.loc = loc
        self.presence_bit = None        # derived: bit number in "m", or None
        self.table = None               # derived: TableLink when table-constrained
        self.default_value = None       # derived: the DEFAULT as the type reads it


class ComponentsOf(Node):
    """COMPONENTS OF Type: replaced by the components of Type during resolution."""

    def __init__(self, type_, loc=None):
        self.type = type_
        self.loc = loc


class ExtensionMarker(Node):
    def __init__(self, loc=None):
        self.loc = loc


class SequenceType(Type):
    """SEQUENCE or SET with components."""

    def __init__(self, kind, members, loc=None):
        super().__init__(loc)
        self.kind = kind                # "SEQUENCE" or "SET"
        self.members = members          # Component, ComponentsOf, ExtensionMarker as written
        self.components = None          # derived: Components after COMPONENTS OF expansion
        self.extensible = any(isinstance(m, ExtensionMarker) for m in members)
        self.presence_bits = None       # derived: number of bits in "m"
        self.instance_of_class = None   # derived: the class name when it expands INSTANCE OF


class ChoiceType(Type):
    kind = "CHOICE"

    def __init__(self, alternatives, extensible, loc=None):
        super().__init__(loc)
        self.alternatives = alternatives
        self.extensible = extensible


class SequenceOfType(Type):
    """SEQUENCE OF / SET OF; a SIZE constraint sits in `constraints`."""

    def __init__(self, kind, element, element_name=None, loc=None):
        super().__init__(loc)
        self.kind = kind                # "SEQUENCE OF" or "SET OF"
        self.element = element
        self.element_name = element_name


class TypeRef(Type):
    """A reference to a named type, possibly in another module, possibly with actual
    parameters. Resolution sets `target` to the TypeAssignment it names."""

    kind = "reference"

    def __init__(self, name, module_name=None, actual_params=None, loc=None):
        super().__init__(loc)
        self.ref_name = name
        self.module_name = module_name
        self.actual_params = actual_params
        self.target = None              # derived: TypeAssignment
        self.lifted = False             # derived: stands for an inline type lifted out


class ClassFieldType(Type):
    """CLASS.&field: an open type (type field) or the type of a value field."""

    kind = "class field"

    def __init__(self, class_ref, field_names, loc=None):
        super().__init__(loc)
        self.class_ref = class_ref      # ClassRef
        self.field_names = field_names  # ["&id"], ["&Type"]
        self.target_class = None        # derived: ObjectClass
        self.field = None               # derived: FieldSpec


class AnyType(Type):
    kind = "ANY"

    def __init__(self, defined_by=None, loc=None):
        super().__init__(loc)
        self.defined_by = defined_by


class InstanceOfType(Type):
    """INSTANCE OF Class: becomes SEQUENCE { type-id, value [0] EXPLICIT open type }."""

    kind = "INSTANCE OF"

    def __init__(self, class_ref, loc=None):
        super().__init__(loc)
        self.class_ref = class_ref


# ---------------------------------------------------------------- values

class Value(Node):
    pass


class IntegerValue(Value):
    def __init__(self, value, loc=None):
        self.value = value
        self.loc = loc


class RealValue(Value):
    def __init__(self, text, loc=None):
        self.text = text
        self.loc = loc


class BooleanValue(Value):
    def __init__(self, value, loc=None):
        self.value = value
        self.loc = loc


class NullValue(Value):
    def __init__(self, loc=None):
        self.loc = loc


class SpecialValue(Value):
    """MIN, MAX, PLUS-INFINITY, MINUS-INFINITY."""

    def __init__(self, keyword, loc=None):
        self.keyword = keyword
        self.loc = loc


class BitStringValue(Value):
    def __init__(self, text, hex_=False, loc=None):
        self.text = text
        self.hex = hex_
        self.loc = loc


class StringValue(Value):
    def __init__(self, text, loc=None):
        self.text = text
        self.loc = loc


class ValueRef(Value):
    def __init__(self, name, module_name=None, loc=None):
        self.name = name
        self.module_name = module_name
        self.loc = loc


class ChoiceValue(Value):
    def __init__(self, alternative, value, loc=None):
        self.alternative = alternative
        self.value = value
        self.loc = loc


class BracedValue(Value):
    """A value in braces kept as tokens: what it means (OID, named bits, SEQUENCE
    value, information object) depends on the governing type or class, which may
    live in another module, so it is interpreted during resolution."""

    def __init__(self, tokens, loc=None):
        self.tokens = tokens
        self.loc = loc
        self.end_loc = None             # the closing brace


class OidValue(Value):
    """An object identifier with every arc resolved (derived)."""

    def __init__(self, arcs, loc=None):
        self.arcs = arcs
        self.loc = loc

    def dotted(self):
        return ".".join(str(a) for a in self.arcs)


class NamedBitsValue(Value):
    """{ bit, bit } for a BIT STRING with named bits (derived)."""

    def __init__(self, names, loc=None):
        self.names = names
        self.loc = loc


class CompositeValue(Value):
    """{ name value, ... } for SEQUENCE/SET values, or { v, v } for SEQUENCE OF."""

    def __init__(self, items, loc=None):
        self.items = items              # list of (name or None, Value)
        self.loc = loc


# ---------------------------------------------------------------- constraints

class Constraint(Node):
    """One parenthesised constraint: a root element set, an extension marker and
    additions. Element sets are trees of the element classes below."""

    def __init__(self, root, extensible=False, additions=None, loc=None):
        self.root = root
        self.extensible = extensible
        self.additions = additions
        self.loc = loc


class SingleValue(Node):
    def __init__(self, value, loc=None):
        self.value = value
        self.loc = loc
        self.evaluated = None           # derived: int (or value) it stands for


class ValueRange(Node):
    def __init__(self, lower, upper, lower_open=False, upper_open=False, loc=None):
        self.lower = lower              # Value or SpecialValue("MIN")
        self.upper = upper              # Value or SpecialValue("MAX")
        self.lower_open = lower_open
        self.upper_open = upper_open
        self.loc = loc
        self.lower_value = None         # derived: int or "MIN"
        self.upper_value = None         # derived: int or "MAX"


class SizeConstraint(Node):
    def __init__(self, constraint, loc=None):
        self.constraint = constraint
        self.loc = loc


class PermittedAlphabet(Node):
    def __init__(self, constraint, loc=None):
        self.constraint = constraint
        self.loc = loc


class ContainedSubtype(Node):
    def __init__(self, type_, loc=None):
        self.type = type_
        self.loc = loc


class InnerTypeConstraints(Node):
    """WITH COMPONENT c / WITH COMPONENTS { ..., name PRESENT, ... }."""

    def __init__(self, single, partial, components, loc=None):
        self.single = single            # Constraint for WITH COMPONENT
        self.partial = partial
        self.components = components    # list of (name, Constraint or None, presence or None)
        self.loc = loc


class TableConstraint(Node):
    """{ObjectSet} or {ObjectSet}{@field, ...}."""

    def __init__(self, object_set, at_refs, loc=None):
        self.object_set = object_set    # ObjectSetSpec
        self.at_refs = at_refs          # list of lists of component names; "." for relative
        self.loc = loc


class ContentsConstraint(Node):
    """CONTAINING Type [ENCODED BY value]: an OCTET STRING or BIT STRING that holds
    the encoding of a value of Type."""

    def __init__(self, type_, encoded_by, loc=None):
        self.type = type_
        self.encoded_by = encoded_by
        self.loc = loc


class UserConstraint(Node):
    """CONSTRAINED BY {...}: a constraint stated in words; nothing to check."""

    def __init__(self, loc=None):
        self.loc = loc


class PatternConstraint(Node):
    def __init__(self, value, loc=None):
        self.value = value
        self.loc = loc


class SetOperation(Node):
    """UNION ("|"), INTERSECTION ("^") and EXCEPT of element sets; ALL EXCEPT has
    `operands[0]` None."""

    def __init__(self, operator, operands, loc=None):
        self.operator = operator        # "UNION", "INTERSECTION", "EXCEPT"
        self.operands = operands
        self.loc = loc


# ---------------------------------------------------------------- classes, objects

class ClassRef(Node):
    def __init__(self, name, module_name=None, loc=None):
        self.name = name
        self.module_name = module_name
        self.loc = loc
        self.target = None              # derived: ObjectClass


class FieldSpec(Node):
    """A field of an information object class. `kind` is "type" (&Type), "value"
    (&id OBJECT IDENTIFIER), "valueset" (&Values Type) or "objectset"/"object"
    when the governor is a class."""

    def __init__(self, name, kind, governor=None, unique=False, optional=False,
                 default=None, loc=None):
        self.name = name
        self.kind = kind
        self.governor = governor        # Type, or ClassRef for object/objectset fields
        self.unique = unique
        self.optional = optional
        self.default = default
        self.loc = loc


class ObjectClass(Node):
    def __init__(self, name, fields, syntax, loc=None):
        self.name = name
        self.fields = fields            # list of FieldSpec
        self.syntax = syntax            # WITH SYNTAX items (see parser) or None
        self.loc = loc
        self.module = None

    def field(self, name):
        for f in self.fields:
            if f.name == name:
                return f
        return None


class InfoObject(Node):
    """An information object: field name -> Type (type fields) or Value."""

    def __init__(self, name, class_ref, settings=None, loc=None):
        self.name = name
        self.class_ref = class_ref
        self.settings = settings or {}
        self.loc = loc
        self.module = None
        self.source = None              # the braced definition or the object it copies
        self.inline = False             # defined inside an object set, named <Set>_<n>
        self.cls = None                 # derived: ObjectClass
        self.defined = False            # derived: settings have been read
        self.carried = {}               # derived: type field -> TypeAssignment carried


class ObjectSetSpec(Node):
    """The elements of an object set: references to objects or sets, inline objects
    (BracedValue until resolved, InfoObject after), extension markers."""

    def __init__(self, elements, extensible, loc=None):
        self.elements = elements        # list of ("object", ValueRef) / ("set", name, module)
        #                                 / ("inline", BracedValue) / ("param", Value)
        self.extensible = extensible
        self.loc = loc
        self.objects = None             # derived: InfoObjects in order


# ---------------------------------------------------------------- assignments

class Parameter(Node):
    def __init__(self, name, governor=None, loc=None):
        self.name = name
        self.governor = governor        # None, a Type, or a ClassRef
        self.loc = loc


class Assignment(Node):
    def __init__(self, name, loc=None):
        self.name = name
        self.loc = loc
        self.module = None
        self.params = None              # list of Parameter for parameterised assignments


class TypeAssignment(Assignment):
    def __init__(self, name, type_, params=None, loc=None):
        super().__init__(name, loc)
        self.type = type_
        self.params = params
        self.generated_name = None      # derived: the name in generated code
        self.lifted_from = False        # derived: made by lifting an inline type
        self.table_constrained = False  # derived: gets table-constraint functions
        self.repr = None                # derived: Representation of its values


class ValueAssignment(Assignment):
    def __init__(self, name, governor, value, loc=None):
        super().__init__(name, loc)
        self.governor = governor        # Type
        self.value = value
        self.evaluated = None           # derived: OidValue, IntegerValue or the value


class ClassAssignment(Assignment):
    def __init__(self, name, object_class=None, alias=None, loc=None):
        super().__init__(name, loc)
        self.object_class = object_class  # ObjectClass, or None for an alias
        self.alias = alias                # ClassRef for "X ::= TYPE-IDENTIFIER" and the like


class GovernedAssignment(Assignment):
    """name Governor ::= ...: a value of a type or an object of a class. Which one
    depends on what the governor names, known only after imports are resolved."""

    def __init__(self, name, governor_name, governor_module, value, loc=None):
        super().__init__(name, loc)
        self.governor_name = governor_name
        self.governor_module = governor_module
        self.value = value


class SetAssignment(Assignment):
    """Name Governor ::= { ... }: an object set of a class (or a value set of a type)."""

    def __init__(self, name, governor_name, governor_module, spec, loc=None):
        super().__init__(name, loc)
        self.governor_name = governor_name
        self.governor_module = governor_module
        self.spec = spec                # ObjectSetSpec


class ObjectAssignment(Assignment):
    """Derived from a GovernedAssignment whose governor is a class."""

    def __init__(self, name, info_object, loc=None):
        super().__init__(name, loc)
        self.object = info_object


class ObjectSetAssignment(Assignment):
    """Derived from a SetAssignment whose governor is a class."""

    def __init__(self, name, class_ref, spec, loc=None):
        super().__init__(name, loc)
        self.class_ref = class_ref
        self.spec = spec


class Import(Node):
    def __init__(self, symbols, module_name, loc=None):
        self.symbols = symbols          # list of (name, loc)
        self.module_name = module_name
        self.loc = loc


class Module(Node):
    def __init__(self, name, tag_default, extensibility_implied, exports, imports,
                 assignments, loc=None):
        self.name = name
        self.tag_default = tag_default  # "EXPLICIT", "IMPLICIT" or "AUTOMATIC"
        self.extensibility_implied = extensibility_implied
        self.exports = exports          # None for all, else list of names
        self.imports = imports
        self.assignments = assignments
        self.loc = loc
        self.file = loc.file if loc else None
        self.symbols = {}               # derived: local name -> Assignment
        self.imported = {}              # derived: imported name -> Module it comes from
        self.types = []                 # derived: named types in generated order
        self.values = []                # derived: ValueAssignments
        self.objects = []               # derived: ObjectAssignments
        self.object_sets = []           # derived: ObjectSetAssignments
        self.classes = []               # derived: ClassAssignments
