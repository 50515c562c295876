"""How each type is held in memory by the generated code, and presence bits.

Scalars and primitive records are held directly, so a named type whose definition
is one of them is an alias of that representation and its generated functions
take the scalar. Structured types get a structure; lists are the runtime's doubly
linked list whatever their size constraint.
"""

from . import model as M
from .naming import underlying
from .resolve import iter_types

CHAR_STRING_KINDS = ("IA5String", "PrintableString", "UTF8String", "NumericString",
                     "TeletexString", "T61String", "VideotexString", "VisibleString",
                     "ISO646String", "GraphicString", "GeneralString", "ObjectDescriptor")
TIME_KINDS = ("UTCTime", "GeneralizedTime")
INT32_MIN, INT32_MAX, UINT32_MAX = -2 ** 31, 2 ** 31 - 1, 2 ** 32 - 1


class Representation:
    """`kind` names the representation, `ctype` is the C++ type of the value,
    `scalar` tells whether a CHOICE holds it by value, `detail` says more in words."""

    def __init__(self, kind, ctype, scalar, detail=""):
        self.kind = kind
        self.ctype = ctype
        self.scalar = scalar
        self.detail = detail
        self.bit_capacity = None

    def __str__(self):
        return "%s (%s)%s" % (self.kind, self.ctype, ", " + self.detail if self.detail else "")


# ------------------------------------------------------------ constraint ranges

def collect_constraints(t):
    """Constraints of `t` and of the types its references lead to, nearest first."""
    out = []
    seen = set()
    while t is not None and id(t) not in seen:
        seen.add(id(t))
        out.extend(t.constraints)
        t = t.target.type if isinstance(t, M.TypeRef) and t.target is not None else None
    return out


def value_range(t, size=False):
    """(lower, upper) the constraints allow, None for an unbounded side; None when
    nothing constrains. With size=True, the SIZE constraints are read instead."""
    lo, hi, found = None, None, False
    for c in collect_constraints(t):
        r = range_of(c.root, size)
        if r is None:
            continue
        if not found:
            lo, hi, found = r[0], r[1], True
        else:                               # successive constraints intersect
            lo = r[0] if lo is None else (lo if r[0] is None else max(lo, r[0]))
            hi = r[1] if hi is None else (hi if r[1] is None else min(hi, r[1]))
    return (lo, hi) if found else None


def range_of(node, size):
    if node is None:
        return None
    if isinstance(node, M.SizeConstraint):
        return range_of(node.constraint.root, False) if size else None
    if size:
        if isinstance(node, M.SetOperation):
            return combine(node, [range_of(op, True) for op in node.operands])
        return None
    if isinstance(node, M.SingleValue):
        v = node.evaluated
        return (v, v) if isinstance(v, int) else None
    if isinstance(node, M.ValueRange):
        lo, hi = node.lower_value, node.upper_value
        lo = lo + (1 if node.lower_open else 0) if isinstance(lo, int) else None
        hi = hi - (1 if node.upper_open else 0) if isinstance(hi, int) else None
        return (lo, hi)
    if isinstance(node, M.SetOperation):
        return combine(node, [range_of(op, False) for op in node.operands])
    if isinstance(node, M.ContainedSubtype):
        return value_range(node.type)
    return None


def combine(node, ranges):
    if node.operator == "UNION":
        if any(r is None for r in ranges):
            return None
        lo = None if any(r[0] is None for r in ranges) else min(r[0] for r in ranges)
        hi = None if any(r[1] is None for r in ranges) else max(r[1] for r in ranges)
        return (lo, hi)
    if node.operator == "INTERSECTION":
        known = [r for r in ranges if r is not None]
        if not known:
            return None
        los = [r[0] for r in known if r[0] is not None]
        his = [r[1] for r in known if r[1] is not None]
        return (max(los) if los else None, min(his) if his else None)
    return ranges[0] if ranges and ranges[0] is not None else None


# ------------------------------------------------------------ representations

def integer_representation(t, base):
    """32-bit when named numbers or a value range say how big the values get,
    unsigned when the range starts at 0 or above; otherwise (serial numbers, key
    material) a big integer held as text, which never overflows."""
    r = value_range(t)
    if r is not None and r[0] is not None and r[0] >= 0 and (r[1] is None or r[1] <= UINT32_MAX):
        return Representation("unsigned 32-bit", "ASN1UINT", True, range_text(r))
    if r is not None and r[0] is not None and r[1] is not None and \
            r[0] >= INT32_MIN and r[1] <= INT32_MAX:
        return Representation("signed 32-bit", "ASN1INT", True, range_text(r))
    if base.named_numbers:
        return Representation("signed 32-bit", "ASN1INT", True, "named numbers")
    return Representation("big integer", "const char*", True, "text form")


def range_text(r):
    return "range %s..%s" % ("MIN" if r[0] is None else r[0], "MAX" if r[1] is None else r[1])


def bit_string_representation(base):
    if not base.named_bits:
        return Representation("dynamic bit string", "ASN1TDynBitStr", False)
    capacity = max(nb.value for nb in base.named_bits) + 1
    rep = Representation("fixed bit string", "struct { ASN1UINT numbits; ASN1OCTET data[%d]; }"
                         % ((capacity + 7) // 8), False,
                         "%d bits, %d bytes" % (capacity, (capacity + 7) // 8))
    rep.bit_capacity = capacity
    return rep


def primitive_representation(kind):
    if kind == "BOOLEAN":
        return Representation("boolean", "ASN1BOOL", True, "one byte, 0 or 1")
    if kind == "NULL":
        return Representation("null", "-", True, "no storage")
    if kind == "OCTET STRING":
        return Representation("dynamic octet string", "ASN1TDynOctStr", False)
    if kind in ("OBJECT IDENTIFIER", "RELATIVE-OID"):
        return Representation("object identifier", "ASN1OBJID", False)
    if kind == "REAL":
        return Representation("real", "ASN1REAL", True)
    if kind in CHAR_STRING_KINDS:
        return Representation("character string", "const char*", True, "NUL-terminated")
    if kind == "BMPString":
        return Representation("16-bit character string", "Asn116BitCharString", False)
    if kind == "UniversalString":
        return Representation("32-bit character string", "Asn132BitCharString", False)
    if kind in TIME_KINDS:
        return Representation("time string", "const char*", True, "time text")
    return Representation("open type", "ASN1TOpenType", False, kind)


def representation(t, name=None):
    """The representation of type node `t`; `name` is the generated name when `t`
    is a named type."""
    base = underlying(t)
    if base is None:
        return Representation("unresolved", "?", False)
    if isinstance(base, M.IntegerType):
        return integer_representation(t, base)
    if isinstance(base, M.EnumeratedType):
        top = max(item.value for item in base.items + base.additions)
        return Representation("enumerated", "ASN1UINT", True, "0..%d" % top)
    if isinstance(base, M.BitStringType):
        return bit_string_representation(base)
    if isinstance(base, M.PrimitiveType):
        return primitive_representation(base.kind)
    struct_name = "ASN1T_" + (name or base.name or "?")
    if isinstance(base, M.SequenceType):
        return Representation("structure", struct_name, False, base.kind)
    if isinstance(base, M.ChoiceType):
        return Representation("choice", struct_name, False, "t and u")
    if isinstance(base, M.SequenceOfType):
        return Representation("list", "_Asn1RTDList", False, "nodes point to elements")
    if isinstance(base, M.ClassFieldType):
        if base.field is not None and base.field.kind == "value" and base.field.governor:
            return representation(base.field.governor)
        return Representation("open type", "ASN1TOpenType", False)
    return Representation("open type", "ASN1TOpenType", False, base.kind)


def member_ctype(t):
    """The C++ type of a member holding `t`: a named type is used by name."""
    if isinstance(t, M.TypeRef) and t.target is not None:
        return "ASN1T_" + t.target.generated_name
    return t.repr.ctype


# ------------------------------------------------------------ presence bits

def is_boolean(t):
    base = underlying(t)
    return isinstance(base, M.PrimitiveType) and base.kind == "BOOLEAN"


def assign_presence_bits(seq):
    """One bit per OPTIONAL or DEFAULT component, first in the least significant bit;
    a BOOLEAN DEFAULT always holds a value (the decoder stores the default) and so
    needs none."""
    bit = 0
    for c in seq.components:
        if c.optional or (c.default is not None and not is_boolean(c.type)):
            c.presence_bit = bit
            bit += 1
        else:
            c.presence_bit = None
    seq.presence_bits = bit


def assign_representations(modules):
    for m in modules:
        for a in m.types:
            for node in iter_types(a.type):
                node.repr = representation(node, a.generated_name if node is a.type else None)
                if isinstance(node, M.SequenceType):
                    assign_presence_bits(node)
            a.repr = a.type.repr
