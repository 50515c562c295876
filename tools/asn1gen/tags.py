"""Effective tags: the tags each type puts on the wire, and the checks that keep
decoding unambiguous.

A written tag takes its mode from its keyword or, without one, from the tagging
default of the module it is written in (AUTOMATIC counts as IMPLICIT for tags the
text writes). IMPLICIT cannot replace a tag that is not there: a CHOICE, an open
type or ANY has none of its own, so a tag on them is always EXPLICIT, whatever the
text or the module default says.
"""

from . import model as M
from .errors import AsnError, AsnErrors
from .resolve import iter_types

UNIVERSAL_NUMBERS = {
    "BOOLEAN": 1, "INTEGER": 2, "BIT STRING": 3, "OCTET STRING": 4, "NULL": 5,
    "OBJECT IDENTIFIER": 6, "ObjectDescriptor": 7, "EXTERNAL": 8, "INSTANCE OF": 8,
    "REAL": 9, "ENUMERATED": 10, "EMBEDDED PDV": 11, "UTF8String": 12, "RELATIVE-OID": 13,
    "SEQUENCE": 16, "SEQUENCE OF": 16, "SET": 17, "SET OF": 17, "NumericString": 18,
    "PrintableString": 19, "TeletexString": 20, "T61String": 20, "VideotexString": 21,
    "IA5String": 22, "UTCTime": 23, "GeneralizedTime": 24, "GraphicString": 25,
    "VisibleString": 26, "ISO646String": 26, "GeneralString": 27, "UniversalString": 28,
    "CHARACTER STRING": 29, "BMPString": 30,
}
CONSTRUCTED_KINDS = ("SEQUENCE", "SEQUENCE OF", "SET", "SET OF", "EXTERNAL", "INSTANCE OF",
                     "EMBEDDED PDV", "CHARACTER STRING")
ANY_TAG = "any"                         # an open type: its tag is not known in advance


class Tagger:
    def __init__(self):
        self.errors = []
        self.in_progress = set()

    def wire_tags(self, t):
        if t.wire_tags is not None:
            return t.wire_tags
        if id(t) in self.in_progress:
            self.errors.append(AsnError("type is defined in terms of itself without "
                                        "a tag or component between", t.loc))
            return []
        self.in_progress.add(id(t))
        tags = list(self.intrinsic(t))
        for tag in reversed(t.tags):
            tags = self.apply(tag, tags, t)
        self.in_progress.discard(id(t))
        t.wire_tags = tags
        return tags

    def intrinsic(self, t):
        if isinstance(t, M.TypeRef):
            return self.wire_tags(t.target.type) if t.target is not None else []
        if isinstance(t, M.ClassFieldType):
            if t.field is not None and t.field.kind == "value" and t.field.governor:
                return self.wire_tags(t.field.governor)
            return []
        number = UNIVERSAL_NUMBERS.get(t.kind)
        if number is None:                  # CHOICE, ANY, open types
            return []
        return [M.WireTag("UNIVERSAL", number, t.kind in CONSTRUCTED_KINDS, False)]

    def apply(self, tag, inner, t):
        mode = tag.mode or self.default_mode(t)
        if not inner:
            mode = "EXPLICIT"
            tag.forced_explicit = tag.mode == "IMPLICIT"
        if mode == "IMPLICIT":
            return [M.WireTag(tag.tag_class, tag.number, inner[0].constructed, False)] + inner[1:]
        return [M.WireTag(tag.tag_class, tag.number, True, True)] + inner

    @staticmethod
    def default_mode(t):
        default = t.module.tag_default if t.module is not None else "EXPLICIT"
        return "EXPLICIT" if default == "EXPLICIT" else "IMPLICIT"

    # ------------------------------------------------------------ checks

    def first_tags(self, t, seen=None):
        """The tags the first octets of an encoding of `t` can start with."""
        tags = self.wire_tags(t)
        if tags:
            return {tags[0]}
        seen = seen or set()
        base = t
        while isinstance(base, M.TypeRef) and base.target is not None:
            if id(base) in seen:
                return set()
            seen.add(id(base))
            base = base.target.type
        if isinstance(base, M.ChoiceType):
            out = set()
            for alt in base.alternatives:
                out |= self.first_tags(alt.type, seen)
            return out
        return {ANY_TAG}

    def check(self, t, owner):
        if isinstance(t, M.ChoiceType):
            self.check_distinct(t.alternatives, owner, "alternatives")
        elif isinstance(t, M.SequenceType) and t.kind == "SET":
            self.check_distinct(t.components, owner, "components")
        elif isinstance(t, M.SequenceType):
            self.check_sequence(t, owner)

    def check_distinct(self, comps, owner, what):
        seen = {}
        for c in comps:
            for tag in self.first_tags(c.type):
                if tag == ANY_TAG:
                    continue
                if tag in seen:
                    self.errors.append(AsnError(
                        "%s '%s' and '%s' of %s share the tag %s" % (what, seen[tag].name,
                                                                    c.name, owner, tag), c.loc))
                seen[tag] = c

    def check_sequence(self, t, owner):
        comps = t.components
        for i, c in enumerate(comps):
            if not (c.optional or c.default is not None):
                continue
            mine = self.first_tags(c.type)
            for later in comps[i + 1:]:
                clash = mine & self.first_tags(later.type) - {ANY_TAG}
                if clash:
                    self.errors.append(AsnError(
                        "optional component '%s' of %s cannot be told apart from '%s' "
                        "(tag %s)" % (c.name, owner, later.name, sorted(map(str, clash))[0]),
                        c.loc))
                    break
                if not (later.optional or later.default is not None):
                    break


def assign_tags(modules):
    tagger = Tagger()
    for m in modules:
        for a in m.types:
            for node in iter_types(a.type):
                tagger.wire_tags(node)
        for a in m.assignments:
            if isinstance(a, M.ObjectAssignment):
                for setting in a.object.settings.values():
                    if isinstance(setting, M.Type):
                        tagger.wire_tags(setting)
    for m in modules:
        for a in m.types:
            tagger.check(a.type, a.name)
    if tagger.errors:
        raise AsnErrors(tagger.errors)
