"""What the emitters need to know about a type at a place of use: which function
codes it, which tags the place adds around it, how it is held in memory, what a
free or copy has to do with it, and which constraints the codec checks.

A "place of use" is a component, an alternative, a list element or the body of an
alias. Every emitter talks about a value through a C++ pointer expression (for
example "&pvalue->version" or "pelem"), so the same code serves components,
elements and the alias functions that receive a pointer.
"""

from .. import model as M
from ..naming import underlying
from ..represent import value_range
from ..tags import UNIVERSAL_NUMBERS, Tagger

CPP_KEYWORDS = frozenset("""
alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t
char32_t class compl const constexpr const_cast continue decltype default delete do double
dynamic_cast else enum explicit export extern false float for friend goto if inline int long
mutable namespace new noexcept not not_eq nullptr operator or or_eq private protected public
register reinterpret_cast return short signed sizeof static static_assert static_cast struct
switch template this thread_local throw true try typedef typeid typename union unsigned using
virtual void volatile wchar_t while xor xor_eq
""".split())


def c_name(asn1_name):
    """An ASN.1 identifier as a C++ identifier: hyphens become underscores, and a name
    that is a C++ keyword gets a trailing underscore."""
    name = asn1_name.replace("-", "_")
    return name + "_" if name in CPP_KEYWORDS else name


# ------------------------------------------------------------ pointer expressions

def deref(p):
    """The object a pointer expression points to."""
    if p.startswith("&"):
        return p[1:]
    return "*" + p if p.isidentifier() else "*(%s)" % p


def field(p, name):
    return "%s.%s" % (p[1:], name) if p.startswith("&") else "%s->%s" % (p, name)


# ------------------------------------------------------------ primitive kinds

class Prim:
    """A primitive representation and the runtime calls that code it."""

    def __init__(self, kind, number=None, ctype=None):
        self.kind = kind            # bool, int, uint, bigint, enum, null, octets, bits, fixedbits,
        #                             oid, reloid, real, chars, bmp, univ, open
        self.number = number        # universal tag number of string types
        self.ctype = ctype

    @property
    def scalar(self):
        return self.kind in ("bool", "int", "uint", "enum", "real")

    @property
    def text(self):
        return self.kind in ("bigint", "chars")

    @property
    def heap_data(self):
        """Holds a pointer into the heap that free releases."""
        return self.kind in ("bigint", "chars", "octets", "bits", "bmp", "univ", "open")


def base_of(t):
    """The node that says what `t` is: references followed, value fields of classes
    replaced by their governing type."""
    base = underlying(t)
    while isinstance(base, M.ClassFieldType) and base.field is not None and \
            base.field.kind == "value" and base.field.governor is not None:
        base = underlying(base.field.governor)
    return base


def prim_of(t):
    """The Prim of a type whose representation is primitive, else None."""
    base = base_of(t)
    rep = t.repr if t.repr is not None else base.repr
    kind = rep.kind
    if kind == "boolean":
        return Prim("bool", ctype="ASN1BOOL")
    if kind == "signed 32-bit":
        return Prim("int", ctype="ASN1INT")
    if kind == "unsigned 32-bit":
        return Prim("uint", ctype="ASN1UINT")
    if kind == "big integer":
        return Prim("bigint", ctype="const char*")
    if kind == "enumerated":
        return Prim("enum", ctype="ASN1UINT")
    if kind == "null":
        return Prim("null", ctype="ASN1OCTET")
    if kind == "dynamic octet string":
        return Prim("octets", ctype="ASN1TDynOctStr")
    if kind == "dynamic bit string":
        return Prim("bits", ctype="ASN1TDynBitStr")
    if kind == "fixed bit string":
        return Prim("fixedbits")
    if kind == "object identifier":
        if isinstance(base, M.PrimitiveType) and base.kind == "RELATIVE-OID":
            return Prim("reloid", ctype="ASN1RELOID")
        return Prim("oid", ctype="ASN1OBJID")
    if kind == "real":
        return Prim("real", ctype="ASN1REAL")
    if kind in ("character string", "time string"):
        return Prim("chars", UNIVERSAL_NUMBERS[base.kind], "const char*")
    if kind == "16-bit character string":
        return Prim("bmp", 30, "Asn116BitCharString")
    if kind == "32-bit character string":
        return Prim("univ", 28, "Asn132BitCharString")
    if kind == "open type":
        return Prim("open", ctype="ASN1TOpenType")
    return None


def structured_kind(t):
    """"SEQUENCE", "SET", "CHOICE", "SEQUENCE OF", "SET OF" or None."""
    base = base_of(t)
    if isinstance(base, (M.SequenceType, M.ChoiceType, M.SequenceOfType)):
        return base.kind
    return None


# ------------------------------------------------------------ places of use

_TAGGER = Tagger()


def own_tags(t):
    """The tags the coder of what `t` names writes itself with explicit tagging."""
    return list(_TAGGER.intrinsic(t))


class Use:
    """A type node at a place of use.

    `target` is the named type whose functions code it (None for an inline primitive,
    coded by the runtime directly); `levels` are the tags this place puts around that
    coder's own encoding, outermost first; when `implicit` is set the last level
    replaces the coder's own outermost tag, so the coder is called with implicit tagging
    and the contents length."""

    def __init__(self, t):
        self.node = t
        self.target = t.target if isinstance(t, M.TypeRef) and t.target is not None else None
        self.prim = None if self.target is not None else prim_of(t)
        self.levels, self.implicit = split_tags(t.wire_tags or [], own_tags(t))

    @property
    def name(self):
        return self.target.generated_name if self.target is not None else None

    def ctype(self):
        """The C++ type of a member holding the value."""
        if self.target is not None:
            return value_ctype(self.target)
        return self.prim.ctype

    def first_tags(self):
        """Tags an encoding at this place can start with; None when any tag can."""
        tags = _TAGGER.first_tags(self.node)
        if "any" in tags:
            return None
        return sorted(tags, key=lambda w: w.word())


def split_tags(wire, own):
    k = len(wire) - len(own)
    if k < 0:
        return [], False
    if wire[k:] == own:
        return wire[:k], False
    if own and wire[k + 1:] == own[1:]:
        return wire[:k + 1], True
    return wire[:k], False


def value_ctype(a):
    """The C++ type of a value of named type `a` held in a member or list element.
    Lists are held in the list record of the object layer, so that no header needs
    another module's list type declared (modules refer to each other's lists in a
    circle)."""
    kind = a.type.repr.kind if a.type.repr else None
    if kind == "list":
        return "ASN1TSeqOfList"
    return "ASN1T_" + a.generated_name


def held_by_pointer(alt_type):
    """A CHOICE alternative larger than a scalar is held through a pointer."""
    return not alt_type.repr.scalar


# ------------------------------------------------------------ named types

def body_kind(a):
    """How the functions of named type `a` are built: "alias" (a reference to another
    named type), "prim", or the structured kind."""
    t = a.type
    if isinstance(t, M.TypeRef):
        return "alias"
    kind = structured_kind(t)
    if kind is not None and base_of(t) is t:
        return kind
    return "prim"


def is_list(a):
    return body_kind(a) in ("SEQUENCE OF", "SET OF")


def named_prim(a):
    return prim_of(a.type)


# ------------------------------------------------------------ constraints

def size_range(t):
    """SIZE bounds (lo, hi) of `t`, None for no constraint or an unbounded side."""
    return value_range(t, size=True)


def int_range(t):
    return value_range(t)


def needs_check(r, lo_implied=None):
    if r is None:
        return False
    lo, hi = r
    return (lo is not None and lo != lo_implied) or hi is not None


def range_condition(expr, r, unsigned):
    """A C++ condition that is true when `expr` lies outside the range `r`."""
    lo, hi = r
    if lo is not None and hi is not None and unsigned:
        # One unsigned comparison catches both sides.
        return "(ASN1UINT)(%s - %du) > %du" % (expr, lo, hi - lo)
    parts = []
    if lo is not None and not (unsigned and lo <= 0):
        parts.append("%s < %d%s" % (expr, lo, "u" if unsigned else ""))
    if hi is not None:
        parts.append("%s > %d%s" % (expr, hi, "u" if unsigned else ""))
    return " || ".join(parts)


# ------------------------------------------------------------ misc

def components(t):
    return base_of(t).components


def alternatives(t):
    return base_of(t).alternatives


def element_use(a):
    return Use(base_of(a.type).element)


def is_boolean_default(c):
    return c.default is not None and c.presence_bit is None


def optional(c):
    return c.optional or c.default is not None or c.extension


def boolean_default(c):
    v = c.default_value if c.default_value is not None else c.default
    return bool(getattr(v, "value", False))
