"""Readable dump of the resolved model of a type: what a reviewer holds against the
published definition (components, tags as they go on the wire, OPTIONAL/DEFAULT and
presence bits, constraints, representation, lifted inline types)."""

from . import model as M
from .naming import underlying
from .represent import member_ctype
from .resolve import child_types


# ------------------------------------------------------------ ASN.1 text of nodes

def value_text(v):
    if v is None:
        return "?"
    if isinstance(v, int):
        return str(v)
    if isinstance(v, str):
        return v
    if isinstance(v, M.IntegerValue):
        return str(v.value)
    if isinstance(v, M.BooleanValue):
        return "TRUE" if v.value else "FALSE"
    if isinstance(v, M.NullValue):
        return "NULL"
    if isinstance(v, M.SpecialValue):
        return v.keyword
    if isinstance(v, M.ValueRef):
        return (v.module_name + "." if v.module_name else "") + v.name
    if isinstance(v, M.OidValue):
        return "{ %s }" % " ".join(str(a) for a in v.arcs)
    if isinstance(v, M.NamedBitsValue):
        return "{ %s }" % ", ".join(v.names)
    if isinstance(v, M.BitStringValue):
        return "'%s'%s" % (v.text, "H" if v.hex else "B")
    if isinstance(v, M.StringValue):
        return '"%s"' % v.text
    if isinstance(v, M.BracedValue):
        return "{ %s }" % " ".join(t.text for t in v.tokens)
    if isinstance(v, M.ChoiceValue):
        return "%s : %s" % (v.alternative, value_text(v.value))
    if isinstance(v, M.RealValue):
        return v.text
    return type(v).__name__


def bound_text(node, attr, fallback):
    v = getattr(node, attr, None)
    return value_text(v if v is not None else fallback)


def element_text(e):
    if e is None:
        return ""
    if isinstance(e, M.SingleValue):
        return bound_text(e, "evaluated", e.value)
    if isinstance(e, M.ValueRange):
        return "%s%s..%s%s" % (bound_text(e, "lower_value", e.lower), "<" if e.lower_open else "",
                                "<" if e.upper_open else "", bound_text(e, "upper_value", e.upper))
    if isinstance(e, M.SizeConstraint):
        return "SIZE %s" % constraint_text(e.constraint)
    if isinstance(e, M.PermittedAlphabet):
        return "FROM %s" % constraint_text(e.constraint)
    if isinstance(e, M.ContainedSubtype):
        return type_text(e.type)
    if isinstance(e, M.TableConstraint):
        text = "{%s}" % set_text(e.object_set)
        if e.at_refs:
            text += "{%s}" % ", ".join("@" + ".".join(p).replace("..", ".") for p in e.at_refs)
        return text
    if isinstance(e, M.ContentsConstraint):
        return "CONTAINING %s" % type_text(e.type) if e.type is not None else "ENCODED BY ..."
    if isinstance(e, M.UserConstraint):
        return "CONSTRAINED BY {...}"
    if isinstance(e, M.InnerTypeConstraints):
        if e.single is not None:
            return "WITH COMPONENT %s" % constraint_text(e.single)
        items = ["..."] if e.partial else []
        for name, inner, presence in e.components:
            items.append(" ".join(x for x in (name, constraint_text(inner) if inner else "",
                                             presence or "") if x))
        return "WITH COMPONENTS { %s }" % ", ".join(items)
    if isinstance(e, M.PatternConstraint):
        return "PATTERN %s" % value_text(e.value)
    if isinstance(e, M.SetOperation):
        if e.operator == "EXCEPT" and e.operands[0] is None:
            return "ALL EXCEPT %s" % element_text(e.operands[1])
        sep = {"UNION": " | ", "INTERSECTION": " ^ ", "EXCEPT": " EXCEPT "}[e.operator]
        return sep.join(element_text(o) for o in e.operands)
    return "?"


def constraint_text(c):
    parts = []
    if c.root is not None:
        parts.append(element_text(c.root))
    if c.extensible:
        parts.append("...")
    if c.additions is not None:
        parts.append(element_text(c.additions))
    return "(%s)" % ", ".join(parts)


def set_text(spec):
    items = []
    for kind, item in spec.elements:
        items.append("{...}" if kind == "inline" else value_text(item))
    if spec.extensible:
        items.append("...")
    return " | ".join(items)


def tag_text(tag):
    cls = "" if tag.tag_class == "CONTEXT" else tag.tag_class + " "
    mode = " " + tag.mode if tag.mode else ""
    return "[%s%s]%s" % (cls, tag.number, mode)


def type_text(t):
    """The type as ASN.1, one line; inline structures are abbreviated."""
    prefix = "".join(tag_text(tag) + " " for tag in t.tags)
    if isinstance(t, M.TypeRef):
        body = (t.module_name + "." if t.module_name else "") + t.ref_name
    elif isinstance(t, M.ClassFieldType):
        body = "%s.%s" % (t.class_ref.name, ".".join(t.field_names))
    elif isinstance(t, M.SequenceOfType):
        body = "%s %s" % (t.kind, type_text(t.element))
    elif isinstance(t, M.IntegerType) and t.named_numbers:
        body = "INTEGER { %s }" % ", ".join("%s(%s)" % (n.name, value_text(n.value))
                                            for n in t.named_numbers)
    elif isinstance(t, M.BitStringType) and t.named_bits:
        body = "BIT STRING { %s }" % ", ".join("%s(%s)" % (n.name, value_text(n.value))
                                               for n in t.named_bits)
    elif isinstance(t, M.AnyType):
        body = "ANY" + (" DEFINED BY " + t.defined_by if t.defined_by else "")
    elif isinstance(t, (M.SequenceType, M.ChoiceType, M.EnumeratedType)):
        body = t.kind + " {...}"
    else:
        body = t.kind
    if isinstance(t, M.SequenceOfType):
        size = " ".join(constraint_text(c) for c in t.constraints)
        if size:
            body = "%s %s OF %s" % (t.kind.split()[0], size, type_text(t.element))
        return prefix + body
    return prefix + body + "".join(" " + constraint_text(c) for c in t.constraints)


# ------------------------------------------------------------ wire tags

def wire_text(tags):
    if not tags:
        return "none of its own (each alternative or value brings its tag)"
    return ", ".join("%s %s %s 0x%08x" % (t, "EXPLICIT" if t.explicit else "IMPLICIT"
                                         if t.tag_class != "UNIVERSAL" else "universal",
                                         "constructed" if t.constructed else "primitive",
                                         t.word()) for t in tags)


# ------------------------------------------------------------ dumps

class Dumper:
    def __init__(self):
        self.lines = []

    def out(self, indent, text):
        self.lines.append("  " * indent + text)

    def type_assignment(self, a):
        t = a.type
        where = " (lifted)" if a.lifted_from else ""
        self.out(0, "%s.%s%s  %s" % (a.module.name, a.generated_name, where, a.loc or ""))
        self.out(1, "ASN.1: %s" % self.definition_text(a))
        self.out(1, "value type: ASN1T_%s = %s" % (a.generated_name, t.repr))
        self.out(1, "tags: %s" % wire_text(t.wire_tags))
        for c in t.constraints:
            self.out(1, "constraint: %s" % constraint_text(c))
        if t.instance_of is not None:
            self.out(1, "instance of parameterised type %s" % t.instance_of.name)
        self.details(t)
        if a.table_constrained:
            self.out(1, "table constraint functions: asn1ETC_%s, asn1DTC_%s"
                     % (a.generated_name, a.generated_name))
        lifted = [c for c in lifted_children(t)]
        if lifted:
            self.out(1, "lifted inline types: %s" % ", ".join(lifted))
        return "\n".join(self.lines)

    def definition_text(self, a):
        t = a.type
        if getattr(t, "instance_of_class", None):
            return "INSTANCE OF %s, that is %s" % (t.instance_of_class, type_text(t))
        if isinstance(t, M.TypeRef) and t.target is not None:
            return "%s  (-> %s)" % (type_text(t), type_text(underlying(t)))
        return type_text(t)

    def details(self, t):
        base = underlying(t)
        if isinstance(base, M.SequenceType) and base is t:
            self.sequence(t)
        elif isinstance(base, M.ChoiceType) and base is t:
            self.choice(t)
        elif isinstance(base, M.SequenceOfType) and base is t:
            self.out(1, "element: %s  (%s)" % (type_text(t.element), member_ctype(t.element)))
            self.out(2, "tags: %s" % wire_text(t.element.wire_tags))
        elif isinstance(base, M.EnumeratedType):
            items = ", ".join("%s = %d" % (i.name, i.value) for i in base.items)
            self.out(1, "enumerations: %s%s" % (items, ", ..." if base.extensible else ""))
            if base.additions:
                self.out(1, "additions: %s" % ", ".join("%s = %d" % (i.name, i.value)
                                                      for i in base.additions))
        elif isinstance(base, M.IntegerType) and base.named_numbers:
            self.out(1, "named numbers: %s" % ", ".join("%s = %d" % (n.name, n.value)
                                                        for n in base.named_numbers))
        elif isinstance(base, M.BitStringType) and base.named_bits:
            self.out(1, "named bits: %s" % ", ".join("%s = %d" % (n.name, n.value)
                                                     for n in base.named_bits))

    def sequence(self, t):
        bits = [c for c in t.components if c.presence_bit is not None]
        if bits:
            self.out(1, "presence bits (m): %d" % len(bits))
            for c in bits:
                self.out(2, "bit %d %sPresent  (%s)" % (c.presence_bit, c.name.replace("-", "_"),
                                                      "OPTIONAL" if c.optional else "DEFAULT"))
        else:
            self.out(1, "presence bits (m): none, no m word")
        if t.extensible:
            self.out(1, "extensible: yes")
        self.out(1, "components:")
        for c in t.components:
            self.component(c)

    def component(self, c):
        mark = ""
        if c.optional:
            mark = "  OPTIONAL"
        elif c.default is not None:
            value = c.default_value
            shown = value_text(c.default)
            if value is not None and value_text(value) != shown:
                shown += " (= %s)" % value_text(value)
            mark = "  DEFAULT %s" % shown
        bit = "  [bit %d]" % c.presence_bit if c.presence_bit is not None else ""
        ext = "  (extension addition)" if c.extension else ""
        self.out(2, "%s  %s%s%s%s" % (c.name, type_text(c.type), mark, bit, ext))
        self.out(3, "tags: %s" % wire_text(c.type.wire_tags))
        self.out(3, "member: %s %s  (%s)" % (member_ctype(c.type), c.name.replace("-", "_"),
                                          c.type.repr))
        if c.table is not None:
            link = c.table
            set_name = link.set.name if link.set is not None else set_text(link.spec)
            self.out(3, "table constraint: %s.%s from {%s} keyed by @%s; followed by an "
                        "Asn1TObject member" % (link.object_class.name if link.object_class
                                                else "?", link.field_name, set_name,
                                                ".".join(link.key_path)))

    def choice(self, t):
        self.out(1, "alternatives (t):")
        for number, alt in enumerate(t.alternatives, 1):
            held = "by value" if alt.type.repr.scalar else "through a pointer"
            ext = "  (extension addition)" if alt.extension else ""
            self.out(2, "%d %s  %s%s" % (number, alt.name, type_text(alt.type), ext))
            self.out(3, "tags: %s" % wire_text(alt.type.wire_tags))
            self.out(3, "u.%s: %s, %s  (%s)" % (alt.name.replace("-", "_"), member_ctype(alt.type),
                                              held, alt.type.repr))
        if t.extensible:
            self.out(1, "extensible: yes")


def lifted_children(t):
    for child in child_types(t):
        if isinstance(child, M.TypeRef) and child.lifted and child.target is not None:
            yield child.target.generated_name


def dump_type(a):
    return Dumper().type_assignment(a)


def dump_values(module):
    lines = []
    for a in module.assignments:
        if isinstance(a, M.ValueAssignment) and isinstance(a.evaluated, M.OidValue):
            lines.append("%s = %s  (%d arcs)" % (a.name.replace("-", "_"), a.evaluated.dotted(),
                                                 len(a.evaluated.arcs)))
    return "\n".join(lines)


def dump_object(obj):
    lines = ["%s  (class %s)%s" % (obj.name, obj.cls.name if obj.cls else "?",
                                  "  " + str(obj.loc) if obj.loc else "")]
    for name, setting in obj.settings.items():
        if isinstance(setting, M.OidValue):
            lines.append("  %s = %s" % (name, setting.dotted()))
        elif isinstance(setting, M.Type):
            carried = obj.carried.get(name)
            lines.append("  %s = %s%s" % (name, type_text(setting),
                                         "  (type %s)" % carried.generated_name if carried
                                         is not None else ""))
        else:
            lines.append("  %s = %s" % (name, value_text(setting)))
    return "\n".join(lines)


def dump_object_set(a):
    members = a.spec.objects or []
    lines = ["%s  (class %s, %d objects%s)" % (a.name, a.class_ref.name, len(members),
                                              ", extensible" if a.spec.extensible else "")]
    lines += ["  %d %s" % (i, obj.name) for i, obj in enumerate(members, 1)]
    return "\n".join(lines)
