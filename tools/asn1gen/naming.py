"""Lifting and naming of inline types, and the order of each module's types.

Every type that the generated code needs as a type of its own but that the module
text writes inline gets a name and becomes a TypeAssignment of its module, marked
`lifted`. Its place of use then holds a reference to it carrying the tags written
there, because a tag belongs to the use, not to the type (two uses of one shared
list type may tag it differently).

Which inline types are lifted, and how they are named:
 - constructed types (SEQUENCE, SET, CHOICE, INSTANCE OF), lists, ENUMERATED,
   INTEGER with named numbers, BIT STRING with named bits and OCTET STRING with a
   SIZE constraint: each needs generated constants, a fixed-size record or its own
   functions, so each is a type of its own;
 - inside a component: <Outer>_<component>, except an unconstrained SEQUENCE OF /
   SET OF whose element has a name of its own, which is _SeqOf<Element> /
   _SetOf<Element> and is shared by every such use in the module;
 - the element of a list: <Outer>_element, or <Outer>_<component>_element for a list
   written inside a component;
 - a type carried by an information object and not written as a plain reference:
   _<object>_<field> (the field without its "&").

Order of a module's types (the layout of its generated code): declaration order,
where each type is preceded, in the order of its components, by the types lifted out
of it and by the types of its module it holds by value (a component that is not a
list, the target of an alias, a CHOICE alternative held as a scalar); a list's lifted
element comes right before the list; types lifted from an information object or an
object set come where the object or set is declared. A type met again while it is
being placed (a cycle) keeps the place its first visit gives it.
"""

from . import model as M
from .errors import AsnError, AsnErrors

LIST_KINDS = ("SEQUENCE OF", "SET OF")
STRUCTURED_KINDS = ("SEQUENCE", "SET", "CHOICE") + LIST_KINDS


def generated_name(name):
    return name.replace("-", "_")


def underlying(t):
    seen = set()
    while isinstance(t, M.TypeRef) and t.target is not None and id(t) not in seen:
        seen.add(id(t))
        t = t.target.type
    return t


def has_size_constraint(t):
    return any(isinstance(c.root, M.SizeConstraint) for c in t.constraints)


def needs_lift(t):
    if isinstance(t, (M.SequenceType, M.ChoiceType, M.SequenceOfType, M.InstanceOfType,
                      M.EnumeratedType)):
        return True
    if isinstance(t, M.IntegerType):
        return bool(t.named_numbers)
    if isinstance(t, M.BitStringType):
        return bool(t.named_bits)
    if isinstance(t, M.PrimitiveType) and t.kind == "OCTET STRING":
        return has_size_constraint(t)
    return False


class ModuleNamer:
    """Lifts and orders the types of one module."""

    def __init__(self, module):
        self.module = module
        self.shared_lists = {}          # _SeqOf/_SetOf name -> TypeAssignment
        self.lifted = {}                # assignment -> the types lifted out of it
        self.placed = set()
        self.placing = set()
        self.order = []

    def lift_all(self):
        for a in self.module.assignments:
            self.lift_assignment(a)

    # ------------------------------------------------------------ lifting

    def lift_assignment(self, a):
        if isinstance(a, M.TypeAssignment) and not a.params:
            a.type.name = generated_name(a.name)
            a.generated_name = a.type.name
            self.lifted[a] = self.lift_inside(a.type, a.type.name)
        elif isinstance(a, M.ObjectAssignment):
            self.lifted[a] = self.lift_object(a.object)
        elif isinstance(a, M.ObjectSetAssignment) and not a.params:
            found = []
            for obj in a.spec.objects or []:
                if obj.inline and obj.module is self.module:
                    found.extend(self.lift_object(obj))
            self.lifted[a] = found

    def lift_inside(self, t, prefix):
        """Lift the inline types written directly inside `t`; returns them in the
        order of the components (a list's lifted element before the list)."""
        out = []
        if isinstance(t, M.SequenceType):
            for c in t.components:
                c.type = self.lift_component(c.type, prefix, c.name, out)
        elif isinstance(t, M.ChoiceType):
            for alt in t.alternatives:
                alt.type = self.lift_component(alt.type, prefix, alt.name, out)
        elif isinstance(t, M.SequenceOfType):
            t.element = self.lift_element(t.element, prefix, out)
        return out

    def lift_component(self, t, prefix, component, out):
        if not needs_lift(t):
            return t
        own_name = "%s_%s" % (prefix, generated_name(component))
        if isinstance(t, M.SequenceOfType):
            # The element is named after the component, but belongs to the list: it
            # is placed right before the list.
            element_out = []
            t.element = self.lift_element(t.element, own_name, element_out)
            shared = self.shared_list_name(t)
            ref = self.share_list(t, shared, out) if shared else self.lift_as(t, own_name, out)
            self.lifted[ref.target] = element_out + self.lifted.get(ref.target, [])
            return ref
        return self.lift_as(t, own_name, out)

    def lift_element(self, t, prefix, out):
        if not needs_lift(t):
            return t
        return self.lift_as(t, prefix + "_element", out)

    def shared_list_name(self, t):
        """_SeqOf<Element> for an unconstrained list of a named element."""
        if t.constraints or not isinstance(t.element, M.TypeRef) or t.element.tags \
                or t.element.constraints:
            return None
        target = t.element.target
        if target is None:
            return None
        element = target.generated_name or generated_name(target.name)
        return ("_SeqOf" if t.kind == "SEQUENCE OF" else "_SetOf") + element

    def share_list(self, t, name, out):
        existing = self.shared_lists.get(name)
        if existing is not None:
            return self.reference(existing, t)
        ref = self.lift_as(t, name, out)
        self.shared_lists[name] = ref.target
        return ref

    def lift_as(self, t, name, out):
        """Make `t` the named type `name` and return the reference that replaces it."""
        t.name = name
        nested = self.lift_inside(t, name)
        a = M.TypeAssignment(name, t, loc=t.loc)
        a.module = self.module
        a.generated_name = name
        a.lifted_from = True
        self.lifted[a] = nested
        out.append(a)
        return self.reference(a, t)

    def reference(self, a, t):
        ref = M.TypeRef(a.name, loc=t.loc)
        ref.module = t.module or self.module
        ref.target = a
        ref.tags, t.tags = t.tags, []
        ref.lifted = True
        ref.automatic_tag = t.automatic_tag
        return ref

    def lift_object(self, obj):
        out = []
        cls = obj.cls
        if cls is None:
            return out
        for field_name, setting in list(obj.settings.items()):
            field = cls.field(field_name)
            if field is None or field.kind != "type":
                continue
            if isinstance(setting, M.TypeRef) and not setting.tags and not setting.constraints:
                obj.carried[field_name] = setting.target
                continue
            name = "_%s_%s" % (generated_name(obj.name), field_name[1:])
            ref = self.lift_as(setting, name, out)
            obj.settings[field_name] = ref
            obj.carried[field_name] = ref.target
        return out

    # ------------------------------------------------------------ order

    def order_types(self):
        for a in self.module.assignments:
            self.place(a)
        self.module.types = self.order

    def place(self, a):
        if a in self.placed or a in self.placing or a.module is not self.module:
            return
        self.placing.add(a)
        if isinstance(a, M.TypeAssignment) and not a.params:
            for dep in self.embedded(a.type):
                self.place(dep)
        for inner in self.lifted.get(a, []):
            self.place(inner)
        if isinstance(a, M.TypeAssignment) and not a.params:
            self.order.append(a)
        self.placing.discard(a)
        self.placed.add(a)

    def embedded(self, t):
        """Types of this module that must precede `t`, in the order of its text: its
        lifted inline types, and the types it holds by value (a component that is not
        a list, the target of an alias, a CHOICE alternative held as a scalar)."""
        if isinstance(t, M.TypeRef):
            return [t.target] if t.target is not None else []
        deps = []
        if isinstance(t, M.SequenceType):
            for c in t.components:
                if self.precedes(c.type, by_pointer=False):
                    deps.append(c.type.target)
        elif isinstance(t, M.ChoiceType):
            for alt in t.alternatives:
                if self.precedes(alt.type, by_pointer=True):
                    deps.append(alt.type.target)
        return deps

    @staticmethod
    def precedes(t, by_pointer):
        if not isinstance(t, M.TypeRef) or t.target is None:
            return False
        if t.lifted:
            return True
        kind = underlying(t).kind
        # A structured CHOICE alternative is held through a pointer and a list
        # through the runtime's list record: neither needs the type's definition.
        return kind not in (STRUCTURED_KINDS if by_pointer else LIST_KINDS)


def name_modules(modules):
    # Everything is lifted before anything is ordered: the order follows lifted
    # types, and a reference may lead to a type lifted in another module.
    namers = [ModuleNamer(m) for m in modules]
    for namer in namers:
        namer.lift_all()
    for namer in namers:
        namer.order_types()
    check_unique_names(modules)


def check_unique_names(modules):
    """Generated names share one C++ namespace, so a name may be used once."""
    seen, errors = {}, []
    for m in modules:
        for a in m.types:
            name = a.generated_name
            if name in seen:
                first = seen[name]
                errors.append(AsnError("generated type name %s is already used by %s.%s "
                                       "(%s)" % (name, first.module.name, first.name,
                                                 first.loc), a.loc))
            else:
                seen[name] = a
    if errors:
        raise AsnErrors(errors)
