"""Value types ASN1T_<Type>: their declarations for the module header, their
constructors and destructors for the module source, and the named constants of
enumerations, named numbers and named bits."""

from .. import model as M
from ..dump import type_text
from . import shapes as S

STRUCT_KINDS = ("SEQUENCE", "SET", "CHOICE")


def is_struct(a):
    """Declared as a struct (and so open to forward declaration), not a typedef."""
    kind = S.body_kind(a)
    return kind in STRUCT_KINDS or (kind == "prim" and S.named_prim(a).kind == "fixedbits")


# ------------------------------------------------------------ ASN.1 text for comments

class SourceTexts:
    """The ASN.1 text of each assignment, cut from its module file between its own
    start and the next assignment's, for the comment above each generated group."""

    def __init__(self):
        self.files = {}

    def lines(self, path):
        if path not in self.files:
            with open(path, encoding="utf-8") as f:
                self.files[path] = f.read().splitlines()
        return self.files[path]

    def of(self, a, module):
        if a.lifted_from or a.loc is None:
            return synthesized(a)
        starts = sorted(x.loc.line for x in module.assignments
                        if x.loc is not None and x.loc.file == a.loc.file)
        later = [line for line in starts if line > a.loc.line]
        lines = self.lines(a.loc.file)
        end = later[0] - 1 if later else len(lines)
        text = lines[a.loc.line - 1:end]
        while text and (not text[-1].strip() or text[-1].strip().startswith("--") or
                        text[-1].strip() == "END"):
            text.pop()
        return "\n".join(text)


def synthesized(a):
    """A lifted type has no text of its own: it is written out from the model."""
    t = a.type
    head = "%s ::= " % a.generated_name
    if isinstance(t, M.SequenceType):
        items = ["  %s %s%s" % (c.name, type_text(c.type),
                                " OPTIONAL" if c.optional else "") for c in t.components]
        return head + "%s {\n%s }" % (t.kind, ",\n".join(items))
    if isinstance(t, M.ChoiceType):
        items = ["  %s %s" % (alt.name, type_text(alt.type)) for alt in t.alternatives]
        return head + "CHOICE {\n%s }" % ",\n".join(items)
    if isinstance(t, M.EnumeratedType):
        return head + "ENUMERATED { %s }" % ", ".join(
            "%s(%d)" % (i.name, i.value) for i in t.items + t.additions)
    return head + type_text(t)


# ------------------------------------------------------------ constants

def named_items(a):
    """(name, value) of the enumerations, named numbers or named bits of `a`."""
    t = a.type
    if isinstance(t, M.EnumeratedType):
        return [(i.name, i.value) for i in t.items + t.additions]
    if isinstance(t, M.IntegerType) and t.named_numbers:
        return [(n.name, n.value) for n in t.named_numbers]
    if isinstance(t, M.BitStringType) and t.named_bits:
        return [(n.name, n.value) for n in t.named_bits]
    return []


def enum_lines(items, indent):
    return ["%s%s = %d%s" % (indent, S.c_name(n), v, "," if i + 1 < len(items) else "")
            for i, (n, v) in enumerate(items)]


def constants_struct(a):
    """Enumerations and named numbers of a scalar type: the value type is the scalar,
    so the names live in a struct named after the ASN.1 type."""
    items = named_items(a)
    if not items or isinstance(a.type, M.BitStringType) or S.body_kind(a) != "prim":
        return []
    return (["struct %s {" % a.generated_name, "  enum Root {"] + enum_lines(items, "    ") +
            ["  };", "};", ""])


# ------------------------------------------------------------ declarations

def members(a):
    """(C++ type, member name) of a SEQUENCE or SET after the context pointer and m."""
    out = []
    for c in S.components(a.type):
        use = S.Use(c.type)
        if use.target is None and use.prim.kind == "null":
            continue
        out.append((use.ctype(), S.c_name(c.name)))
        if c.table is not None:
            out.append(("Asn1TObject", S.c_name(c.name) + "_obj"))
    return out


def alternative_members(a):
    out = []
    for alt in S.alternatives(a.type):
        use = S.Use(alt.type)
        if use.target is None and use.prim.kind == "null":
            continue
        ctype = use.ctype()
        out.append((ctype + "*" if S.held_by_pointer(alt.type) else ctype, S.c_name(alt.name)))
    return out


def declaration(a, comment):
    """Header lines declaring ASN1T_<Type>."""
    name = "ASN1T_" + a.generated_name
    kind = S.body_kind(a)
    lines = list(comment)
    if kind == "alias":
        lines.append("typedef %s %s;" % (S.value_ctype(a.type.target), name))
    elif kind in ("SEQUENCE OF", "SET OF"):
        lines.append("typedef ASN1TSeqOfList %s;" % name)
    elif kind == "prim":
        prim = S.named_prim(a)
        if prim.kind == "fixedbits":
            lines += fixed_bits(a, name)
        else:
            lines.append("typedef %s %s;" % (prim.ctype, name))
    else:
        lines += structure(a, name, kind)
    return lines + [""]


def fixed_bits(a, name):
    capacity = a.type.repr.bit_capacity
    items = named_items(a)
    return (["struct %s {" % name, "  ASN1UINT numbits;",
             "  ASN1OCTET data[%d];" % ((capacity + 7) // 8), "  enum NamedBits {"] +
            enum_lines(items, "    ") +
            ["  };", "  %s() : numbits(0), data() {}" % name, "};"])


def structure(a, name, kind):
    lines = ["struct QN_API %s {" % name, "  ASN1Context* mpContext;"]
    if kind == "CHOICE":
        alts = S.alternatives(a.type)
        lines.append("  enum Alternative {")
        lines += enum_lines([("T_" + alt.name, i) for i, alt in enumerate(alts, 1)], "    ")
        lines.append("  };")
        lines.append("  ASN1UINT t;")
        lines.append("  union {")
        lines += ["    %s %s;" % m for m in alternative_members(a)] or ["    ASN1OCTET none;"]
        lines.append("  } u;")
    else:
        bits = [c for c in S.components(a.type) if c.presence_bit is not None]
        if bits:
            lines.append("  struct {")
            lines += ["    unsigned %sPresent : 1;" % S.c_name(c.name) for c in bits]
            lines.append("  } m;")
        lines += ["  %s %s;" % m for m in members(a)]
    lines += ["", "  %s();" % name, "  ~%s();" % name,
              "  %s(const %s&) = delete;" % (name, name),
              "  %s& operator=(const %s&) = delete;" % (name, name), "};"]
    return lines


# ------------------------------------------------------------ constructor, destructor

def lifecycle(w, a):
    """Source lines of the constructor and destructor of a structured value type."""
    name = "ASN1T_" + a.generated_name
    kind = S.body_kind(a)
    inits = ["mpContext(0)"]
    if kind == "CHOICE":
        inits += ["t(0)", "u()"]
    else:
        if any(c.presence_bit is not None for c in S.components(a.type)):
            inits.append("m()")
        inits += ["%s()" % member for _, member in members(a)]
    w("%s::%s() : %s {}" % (name, name, ", ".join(inits)))
    w("")
    # A value that a decode or a copy attached to a context frees its content there.
    with w.block("%s::~%s()" % (name, name)):
        with w.block("if (mpContext != 0)"):
            w("asn1Free_%s(mpContext->getPtr(), this);" % a.generated_name)
            w("mpContext->_unref();")
