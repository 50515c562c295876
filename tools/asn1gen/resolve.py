"""Resolution: binds every reference across modules and settles what the parser
left open.

Passes, in order (each needs the previous one):
 1. index each module's assignments and bind its imports;
 2. classify "name Governor ::= ..." as values or information objects, and
    "X ::= Y" as type or class aliases, now that every name is known;
 3. resolve types: type references, parameterised types (instantiated at each use),
    class fields, INSTANCE OF, COMPONENTS OF, automatic tags;
 4. evaluate values: object identifiers to arcs, integers, DEFAULT values;
 5. interpret information objects against their class syntax and expand object
    sets into their members;
 6. link table constraints ({Set}{@field}) to the components they relate.
Faults are collected per pass and raised together, each with its position.
"""

import copy

from . import lexer as L
from . import model as M
from .errors import AsnError, AsnErrors
from .parser import sub_parser

# Arc names that need no definition: the top of the object identifier tree.
TOP_ARCS = {"itu-t": 0, "ccitt": 0, "iso": 1, "joint-iso-itu-t": 2, "joint-iso-ccitt": 2}
SECOND_ARCS = {
    0: {"recommendation": 0, "question": 1, "administration": 2, "network-operator": 3,
        "identified-organization": 4},
    1: {"standard": 0, "registration-authority": 1, "member-body": 2,
        "identified-organization": 3},
}


def type_identifier_class():
    """TYPE-IDENTIFIER, the one class every compiler knows without a definition."""
    oid_type = M.PrimitiveType("OBJECT IDENTIFIER")
    fields = [M.FieldSpec("&id", "value", oid_type, unique=True),
              M.FieldSpec("&Type", "type")]
    syntax = [("field", "&Type"), ("word", "IDENTIFIED"), ("word", "BY"), ("field", "&id")]
    a = M.ClassAssignment("TYPE-IDENTIFIER", M.ObjectClass("TYPE-IDENTIFIER", fields, syntax))
    a.object_class.module = None
    return a


class TableLink:
    """How a component's value is chosen by another component through an object
    set: `set` is the ObjectSetAssignment (or None for an inline set), `spec` the
    set as written, `key_path` the @-reference, `field` the class field carried."""

    def __init__(self, spec, set_assignment, key_path, field_name, class_):
        self.spec = spec
        self.set = set_assignment
        self.key_path = key_path
        self.field_name = field_name
        self.object_class = class_


class Resolver:
    def __init__(self, modules):
        self.modules = {}
        self.errors = []
        for m in modules:
            if m.name in self.modules:
                self.errors.append(AsnError("module %s is defined twice (first at %s)"
                                            % (m.name, self.modules[m.name].loc), m.loc))
            self.modules[m.name] = m
        self.builtin_classes = {"TYPE-IDENTIFIER": type_identifier_class()}
        self._instantiating = []
        self.resolved = set()           # ids of TypeAssignments already resolved
        self.evaluation = {}            # id of ValueAssignment -> "busy" or "done"
        self.eval_depth = 0

    # ================================================================ driver

    def run(self):
        passes = (self.index_modules, self.bind_imports, self.classify_assignments,
                  self.resolve_types, self.evaluate_values, self.resolve_objects,
                  self.link_table_constraints)
        for step in passes:
            step()
            self.raise_errors()
        return list(self.modules.values())

    def raise_errors(self):
        if self.errors:
            errors, self.errors = self.errors, []
            raise AsnErrors(errors)

    def error(self, message, loc):
        self.errors.append(AsnError(message, loc))

    # ================================================================ pass 1: names

    def index_modules(self):
        for m in self.modules.values():
            for a in m.assignments:
                a.module = m
                set_scope(a, m)
                if a.name in m.symbols:
                    self.error("'%s' is already defined at %s" % (a.name,
                               m.symbols[a.name].loc), a.loc)
                    continue
                m.symbols[a.name] = a

    def bind_imports(self):
        for m in self.modules.values():
            for imp in m.imports:
                source = self.modules.get(imp.module_name)
                if source is None:
                    self.error("module %s is not among the modules given" % imp.module_name,
                               imp.loc)
                    continue
                for name, loc in imp.symbols:
                    target = self.exported(source, name, set())
                    if target is None:
                        self.error("'%s' is not defined in module %s" % (name, source.name),
                                   loc)
                    else:
                        # Kept as a route, not the assignment: classification may
                        # still replace the assignment the name leads to.
                        m.imported[name] = source

    def exported(self, module, name, seen):
        """The assignment `name` names in `module`, following names it imports in turn
        (several of our modules pass on what they import)."""
        if name in module.symbols:
            return module.symbols[name]
        if module.name in seen:
            return None
        seen.add(module.name)
        for imp in module.imports:
            if any(n == name for n, _ in imp.symbols) and imp.module_name in self.modules:
                return self.exported(self.modules[imp.module_name], name, seen)
        return None

    def lookup(self, scope, name, module_name=None):
        if module_name is not None:
            source = self.modules.get(module_name)
            return self.exported(source, name, set()) if source else None
        if name in scope.symbols:
            return scope.symbols[name]
        if name in scope.imported:
            return self.exported(scope.imported[name], name, set())
        return self.builtin_classes.get(name)

    # ================================================================ pass 2: classify

    def classify_assignments(self):
        for m in self.modules.values():
            for i, a in enumerate(m.assignments):
                replacement = self.classify(m, a)
                if replacement is not a:
                    replacement.module = m
                    replacement.params = a.params
                    m.assignments[i] = replacement
                    m.symbols[a.name] = replacement

    def classify(self, m, a):
        if isinstance(a, M.TypeAssignment) and self.names_class(m, a.type):
            alias = M.ClassRef(a.type.ref_name, a.type.module_name, a.type.loc)
            return M.ClassAssignment(a.name, alias=alias, loc=a.loc)
        if isinstance(a, M.GovernedAssignment):
            return self.classify_governed(m, a)
        if isinstance(a, M.SetAssignment):
            return self.classify_set(m, a)
        return a

    def names_class(self, m, t):
        if not isinstance(t, M.TypeRef) or t.tags or t.constraints or t.actual_params:
            return False
        return isinstance(self.lookup(m, t.ref_name, t.module_name), M.ClassAssignment)

    def classify_governed(self, m, a):
        governor = self.lookup(m, a.governor_name, a.governor_module)
        if governor is None:
            self.error("undefined type or class '%s'" % a.governor_name, a.loc)
            return a
        if isinstance(governor, M.ClassAssignment):
            class_ref = M.ClassRef(a.governor_name, a.governor_module, a.loc)
            class_ref.module = m
            obj = M.InfoObject(a.name, class_ref, loc=a.loc)
            obj.module = m
            obj.source = a.value
            return M.ObjectAssignment(a.name, obj, a.loc)
        gov_type = M.TypeRef(a.governor_name, a.governor_module, loc=a.loc)
        gov_type.module = m
        return M.ValueAssignment(a.name, gov_type, a.value, a.loc)

    def classify_set(self, m, a):
        governor = self.lookup(m, a.governor_name, a.governor_module)
        if not isinstance(governor, M.ClassAssignment):
            self.error("'%s' is not an information object class; value sets are not "
                       "supported" % a.governor_name, a.loc)
            return a
        class_ref = M.ClassRef(a.governor_name, a.governor_module, a.loc)
        class_ref.module = m
        return M.ObjectSetAssignment(a.name, class_ref, a.spec, a.loc)

    # ================================================================ pass 3: types

    def resolve_types(self):
        for m in self.modules.values():
            for a in m.assignments:
                if isinstance(a, M.ClassAssignment):
                    self.resolve_class(a)
        for m in self.modules.values():
            for a in m.assignments:
                if isinstance(a, M.TypeAssignment) and not a.params:
                    self.resolve_assignment(a)
                elif isinstance(a, M.ValueAssignment):
                    a.governor = self.resolve_type(a.governor)

    def resolve_assignment(self, a):
        # Reached both in declaration order and through references: once is enough.
        if id(a) in self.resolved:
            return
        self.resolved.add(id(a))
        a.type = self.resolve_type(a.type)

    def resolve_class(self, a):
        if a.object_class is None:
            target = self.class_of(M.ClassRef(a.alias.name, a.alias.module_name, a.alias.loc),
                                   a.module)
            a.object_class = target
            return
        a.object_class.module = a.module
        for f in a.object_class.fields:
            if f.governor is None:
                continue
            if isinstance(f.governor, M.TypeRef) and self.names_class(a.module, f.governor):
                f.kind = "object" if f.name[1].islower() else "objectset"
                f.governor = M.ClassRef(f.governor.ref_name, f.governor.module_name,
                                        f.governor.loc)
            else:
                f.governor = self.resolve_type(f.governor)

    def class_of(self, class_ref, scope, seen=None):
        """The ObjectClass a ClassRef names, through aliases such as
        "OTHER-NAME ::= TYPE-IDENTIFIER"."""
        a = self.lookup(scope, class_ref.name, class_ref.module_name)
        if not isinstance(a, M.ClassAssignment):
            self.error("undefined information object class '%s'" % class_ref.name,
                       class_ref.loc)
            return None
        if a.object_class is not None:
            return a.object_class
        seen = seen or set()
        if id(a) in seen:
            self.error("class alias '%s' refers to itself" % a.name, a.loc)
            return None
        seen.add(id(a))
        a.object_class = self.class_of(a.alias, a.module, seen)
        return a.object_class

    def resolve_type(self, t):
        """Resolve a type node in place; returns the node that stands for it, which
        differs from `t` when a parameterised reference or INSTANCE OF is expanded."""
        method = getattr(self, "resolve_" + type(t).__name__, None)
        return method(t) if method else t

    def resolve_TypeRef(self, t):
        if t.target is not None:
            return t
        a = self.lookup(t.module, t.ref_name, t.module_name)
        if a is None:
            self.error("undefined type '%s'" % t.ref_name, t.loc)
            return t
        if not isinstance(a, M.TypeAssignment):
            self.error("'%s' is not a type" % t.ref_name, t.loc)
            return t
        if a.params:
            return self.instantiate(t, a)
        if t.actual_params:
            self.error("'%s' takes no parameters" % t.ref_name, t.loc)
        t.target = a
        self.resolve_assignment(a)
        return t

    def instantiate(self, ref, template):
        """A use of a parameterised type becomes a copy of its body with the actual
        parameters put in place of the dummy names."""
        if ref.actual_params is None or len(ref.actual_params) != len(template.params):
            self.error("'%s' needs %d parameter(s)" % (template.name, len(template.params)),
                       ref.loc)
            return ref
        if len(self._instantiating) > 32:
            self.error("parameterised type '%s' expands without end" % template.name, ref.loc)
            return ref
        body = copy.deepcopy(template.type, self.copy_memo())
        bindings = {p.name: arg for p, arg in zip(template.params, ref.actual_params)}
        body = substitute(body, bindings, self.copy_memo())
        body.tags = ref.tags + body.tags
        body.constraints = body.constraints + ref.constraints
        body.loc = ref.loc
        body.instance_of = template
        self._instantiating.append(template.name)
        try:
            return self.resolve_type(body)
        finally:
            self._instantiating.pop()

    def copy_memo(self):
        # Copies of syntax trees share, never duplicate, the modules they point to.
        return {id(m): m for m in self.modules.values()}

    def resolve_SequenceType(self, t):
        for member in t.members:
            if isinstance(member, (M.Component, M.ComponentsOf)):
                member.type = self.resolve_type(member.type)
        t.components = self.expand_components(t)
        self.apply_automatic_tags(t, t.members)
        return t

    def expand_components(self, t):
        components = []
        for member in t.members:
            if isinstance(member, M.Component):
                components.append(member)
            elif isinstance(member, M.ComponentsOf):
                components.extend(self.components_of(member))
        seen = {}
        for c in components:
            if c.name in seen:
                self.error("component '%s' appears twice (first at %s)" % (c.name,
                           seen[c.name].loc), c.loc)
            seen[c.name] = c
        return components

    def components_of(self, member):
        target = self.underlying(member.type)
        if not isinstance(target, M.SequenceType):
            self.error("COMPONENTS OF needs a SEQUENCE or SET type", member.loc)
            return []
        if target.components is None:
            self.resolve_type(target)
        # The included components belong to the including type: they are copied so
        # that their inline types are named after it.
        roots = [c for c in target.components if not c.extension]
        return copy.deepcopy(roots, self.shared_memo())

    def shared_memo(self):
        memo = self.copy_memo()
        for m in self.modules.values():
            for a in m.assignments:
                memo[id(a)] = a
                if isinstance(a, M.ClassAssignment) and a.object_class is not None:
                    memo[id(a.object_class)] = a.object_class
                    for f in a.object_class.fields:
                        memo[id(f)] = f
        return memo

    def apply_automatic_tags(self, t, members):
        """In an AUTOMATIC TAGS module a SEQUENCE, SET or CHOICE whose components carry
        no tag at all gets [0], [1], ... in order."""
        module = t.module
        if module is None or module.tag_default != "AUTOMATIC":
            return
        written = [m for m in members if isinstance(m, M.Component)]
        if any(c.type.tags for c in written):
            return
        comps = t.components if isinstance(t, M.SequenceType) else t.alternatives
        for number, c in enumerate(comps):
            tag = M.Tag("CONTEXT", number, None, c.loc)
            if c.type.automatic_tag:                      # included by COMPONENTS OF
                c.type.tags[0] = tag
            else:
                c.type.tags.insert(0, tag)
            c.type.automatic_tag = True

    def resolve_ChoiceType(self, t):
        for alt in t.alternatives:
            alt.type = self.resolve_type(alt.type)
        seen = {}
        for alt in t.alternatives:
            if alt.name in seen:
                self.error("alternative '%s' appears twice" % alt.name, alt.loc)
            seen[alt.name] = alt
        self.apply_automatic_tags(t, t.alternatives)
        return t

    def resolve_SequenceOfType(self, t):
        t.element = self.resolve_type(t.element)
        return t

    def resolve_ClassFieldType(self, t):
        cls = self.class_of(t.class_ref, t.module)
        if cls is None:
            return t
        t.target_class = cls
        field = cls.field(t.field_names[0])
        if field is None or len(t.field_names) > 1:
            self.error("class %s has no field %s" % (cls.name, ".".join(t.field_names)),
                       t.loc)
            return t
        t.field = field
        return t

    def resolve_InstanceOfType(self, t):
        """INSTANCE OF C is SEQUENCE { type-id C.&id, value [0] EXPLICIT C.&Type }."""
        cls = self.class_of(t.class_ref, t.module)
        if cls is None:
            return t
        id_type = M.ClassFieldType(t.class_ref, ["&id"], t.loc)
        value_type = M.ClassFieldType(t.class_ref, ["&Type"], t.loc)
        value_type.tags = [M.Tag("CONTEXT", 0, "EXPLICIT", t.loc)]
        for c in t.constraints:            # {Set} on INSTANCE OF constrains both fields
            id_type.constraints.append(c)
            value_type.constraints.append(c)
        members = [M.Component("type-id", id_type, loc=t.loc),
                   M.Component("value", value_type, loc=t.loc)]
        seq = M.SequenceType("SEQUENCE", members, t.loc)
        seq.tags = t.tags
        seq.instance_of_class = t.class_ref.name
        for node in (id_type, value_type, seq):
            node.module = t.module
        return self.resolve_type(seq)

    def underlying(self, t, seen=None):
        """The type a chain of references ends in (not copied)."""
        seen = seen or set()
        while isinstance(t, M.TypeRef):
            if id(t) in seen:
                return None
            seen.add(id(t))
            if t.target is None:
                self.resolve_TypeRef(t)
            if t.target is None:
                return None
            t = t.target.type
        return t

    # ================================================================ pass 4: values

    def evaluate_values(self):
        for m in self.modules.values():
            for a in m.assignments:
                if isinstance(a, M.ValueAssignment) and not a.params:
                    self.evaluate_assignment(a)
        # Numbers first (tags, named numbers, enumerations) everywhere, then what
        # may name them: DEFAULT values and constraint bounds.
        for step in (self.evaluate_type_numbers, self.evaluate_type_values):
            for m in self.modules.values():
                for a in m.assignments:
                    if isinstance(a, M.TypeAssignment) and not a.params:
                        for node in iter_types(a.type):
                            step(node)

    def evaluate_assignment(self, a):
        """Evaluate a value assignment once. A fault is recorded by the outermost
        evaluation only, so a value that others depend on is reported once."""
        state = self.evaluation.get(id(a))
        if state == "done":
            return a.evaluated
        if state == "busy":
            raise AsnError("value '%s' is defined in terms of itself" % a.name, a.loc)
        self.evaluation[id(a)] = "busy"
        self.eval_depth += 1
        try:
            a.evaluated = self.evaluate(a.value, a.governor, a.module)
        except AsnError as e:
            a.evaluated = None
            if self.eval_depth > 1:
                raise
            self.errors.append(e)
        finally:
            self.evaluation[id(a)] = "done"
            self.eval_depth -= 1
        return a.evaluated

    def evaluate(self, value, governor, scope):
        """The value as the governing type reads it: arcs for OBJECT IDENTIFIER, an
        int for INTEGER/ENUMERATED (named numbers allowed), names for named bits."""
        base = self.underlying(governor) if governor is not None else None
        kind = base.kind if base is not None else None
        if kind == "OBJECT IDENTIFIER":
            return M.OidValue(self.oid_arcs(value, scope), value.loc)
        if kind in ("INTEGER", "ENUMERATED"):
            return M.IntegerValue(self.integer(value, scope, base), value.loc)
        if kind == "BIT STRING" and isinstance(value, M.BracedValue):
            return M.NamedBitsValue([t.text for t in value.tokens if t.kind == L.VALUEREF],
                                    value.loc)
        if isinstance(value, M.ValueRef):
            target = self.lookup(value.module or scope, value.name, value.module_name)
            if isinstance(target, M.ValueAssignment):
                return self.evaluate_assignment(target)
            return value                    # a named value of the type, kept by name
        return value

    def integer(self, value, scope, int_type=None):
        if isinstance(value, int):
            return value
        if isinstance(value, M.IntegerValue):
            return value.value
        if isinstance(value, M.ValueRef):
            named = self.named_number(int_type, value.name) if value.module_name is None else None
            if named is not None:
                return named
            target = self.lookup(value.module or scope, value.name, value.module_name)
            if isinstance(target, M.ValueAssignment):
                result = self.evaluate_assignment(target)
                if isinstance(result, M.IntegerValue):
                    return result.value
            raise AsnError("'%s' is not an integer value" % value.name, value.loc)
        raise AsnError("expected an integer value", getattr(value, "loc", None))

    def named_number(self, int_type, name):
        items = []
        if isinstance(int_type, M.IntegerType):
            items = int_type.named_numbers
        elif isinstance(int_type, M.EnumeratedType):
            items = int_type.items + int_type.additions
        for nn in items:
            if nn.name == name:
                return nn.value if isinstance(nn.value, int) else None
        return None

    def oid_arcs(self, value, scope):
        if isinstance(value, M.OidValue):
            return value.arcs
        if isinstance(value, M.ValueRef):
            return self.oid_of_reference(value, scope)
        if not isinstance(value, M.BracedValue):
            raise AsnError("expected an OBJECT IDENTIFIER value", value.loc)
        return self.oid_components(value, scope)

    def oid_of_reference(self, ref, scope):
        target = self.lookup(ref.module or scope, ref.name, ref.module_name)
        if not isinstance(target, M.ValueAssignment):
            raise AsnError("undefined object identifier value '%s'" % ref.name, ref.loc)
        result = self.evaluate_assignment(target)
        if not isinstance(result, M.OidValue):
            raise AsnError("'%s' is not an object identifier" % ref.name, ref.loc)
        return result.arcs

    def oid_components(self, value, scope):
        p = sub_parser(value)
        arcs = []
        while not p.at(L.EOF):
            t = p.tok
            if t.kind == L.NUMBER:
                arcs.append(int(p.advance().text))
            elif t.kind == L.VALUEREF and p.peek().is_(L.SYMBOL, "("):
                p.advance()
                p.advance()
                arcs.append(self.arc_number(p, scope))
                p.expect_sym(")")
            elif t.kind == L.VALUEREF:
                arcs.extend(self.named_arc(p.advance(), arcs, scope))
            elif t.kind == L.TYPEREF and p.peek().is_(L.SYMBOL, "."):
                ref = p.defined_value()
                arcs.extend(self.oid_of_reference(ref, scope) if not arcs
                            else [self.integer(ref, scope)])
            else:
                raise AsnError("unexpected '%s' in an object identifier" % t.text, t.loc)
        if not arcs:
            raise AsnError("empty object identifier", value.loc)
        return arcs

    def arc_number(self, p, scope):
        if p.at(L.NUMBER):
            return int(p.advance().text)
        return self.integer(p.defined_value(), scope)

    def named_arc(self, tok, arcs, scope):
        """A lone name in an object identifier: a well-known arc, a reference to an
        object identifier (first position) or to an integer value."""
        name = tok.text
        local = self.lookup(scope, name)
        if not arcs and isinstance(local, M.ValueAssignment):
            return self.oid_of_reference(M.ValueRef(name, None, tok.loc), scope)
        if not arcs and name in TOP_ARCS:
            return [TOP_ARCS[name]]
        if len(arcs) == 1 and name in SECOND_ARCS.get(arcs[0], {}):
            return [SECOND_ARCS[arcs[0]][name]]
        if isinstance(local, M.ValueAssignment):
            return [self.integer(M.ValueRef(name, None, tok.loc), scope)]
        raise AsnError("undefined name '%s' in an object identifier" % name, tok.loc)

    def evaluate_type_numbers(self, t):
        """Tag numbers, named numbers and enumerations that name values become
        plain ints."""
        try:
            for tag in t.tags:
                if not isinstance(tag.number, int):
                    tag.number = self.integer(tag.number, t.module)
            named = t.named_numbers if isinstance(t, M.IntegerType) else \
                t.named_bits if isinstance(t, M.BitStringType) else []
            for nn in named:
                if not isinstance(nn.value, int):
                    nn.value = self.integer(nn.value, t.module)
            if isinstance(t, M.EnumeratedType):
                self.number_enumerations(t)
        except AsnError as e:
            self.errors.append(e)

    def evaluate_type_values(self, t):
        """DEFAULT values and constraint bounds, read as their types read them."""
        try:
            if isinstance(t, M.SequenceType):
                for c in t.components or []:
                    if c.default is not None:
                        c.default_value = self.evaluate(c.default, c.type, t.module)
            for c in t.constraints:
                self.evaluate_constraint(c, t)
        except AsnError as e:
            self.errors.append(e)

    def number_enumerations(self, t):
        # Items without a number take the smallest free ones, in order.
        used = set()
        for item in t.items + t.additions:
            if item.value is not None and not isinstance(item.value, int):
                item.value = self.integer(item.value, t.module)
            if item.value is not None:
                if item.value in used:
                    raise AsnError("enumeration number %d is used twice" % item.value,
                                   item.loc)
                used.add(item.value)
        n = 0
        for item in t.items + t.additions:
            if item.value is None:
                while n in used:
                    n += 1
                item.value = n
                used.add(n)

    def evaluate_constraint(self, constraint, t):
        for node in iter_constraint_nodes(constraint):
            if isinstance(node, M.SingleValue):
                node.evaluated = self.bound(node.value, t)
            elif isinstance(node, M.ValueRange):
                node.lower_value = self.bound(node.lower, t)
                node.upper_value = self.bound(node.upper, t)
            elif isinstance(node, M.ContainedSubtype):
                node.type = self.resolve_type(node.type)
            elif isinstance(node, M.ContentsConstraint) and node.type is not None:
                node.type = self.resolve_type(node.type)

    def bound(self, value, t):
        if isinstance(value, M.SpecialValue):
            return value.keyword
        if isinstance(value, M.IntegerValue):
            return value.value
        if isinstance(value, M.ValueRef):
            target = self.lookup(value.module or t.module, value.name, value.module_name)
            if isinstance(target, M.ValueAssignment):
                result = self.evaluate_assignment(target)
                if isinstance(result, M.IntegerValue):
                    return result.value
                return result
            named = self.named_number(self.underlying(t), value.name)
            if named is not None:
                return named
            raise AsnError("undefined value '%s'" % value.name, value.loc)
        return value

    # ================================================================ pass 5: objects

    def resolve_objects(self):
        for m in self.modules.values():
            for a in m.assignments:
                if isinstance(a, M.ObjectAssignment):
                    self.define_object(a.object)
        for m in self.modules.values():
            for a in m.assignments:
                if isinstance(a, M.ObjectSetAssignment) and not a.params:
                    self.expand_set(a.spec, a.class_ref, m, a.name)

    def define_object(self, obj):
        if obj.defined:
            return
        obj.defined = True
        obj.cls = self.class_of(obj.class_ref, obj.module)
        if obj.cls is None:
            return
        source = obj.source
        try:
            if isinstance(source, M.ValueRef):
                obj.settings = dict(self.object_by_reference(source, obj.module).settings)
            elif isinstance(source, M.BracedValue):
                obj.settings = self.parse_object(obj.cls, source, obj.module)
            else:
                raise AsnError("expected an information object", source.loc)
            self.resolve_settings(obj)
        except AsnError as e:
            self.errors.append(e)

    def object_by_reference(self, ref, scope):
        a = self.lookup(ref.module or scope, ref.name, ref.module_name)
        if not isinstance(a, M.ObjectAssignment):
            raise AsnError("'%s' is not an information object" % ref.name, ref.loc)
        self.define_object(a.object)
        return a.object

    def parse_object(self, cls, braced, scope):
        p = sub_parser(braced)
        settings = {}
        if cls.syntax is None:
            self.default_syntax(p, cls, settings)
        else:
            self.best_error = None
            if not self.match_syntax(p, cls, cls.syntax, settings, lambda: p.at(L.EOF)):
                raise self.best_error or AsnError(
                    "object does not follow the syntax of class %s" % cls.name, braced.loc)
        for f in cls.fields:
            if f.name not in settings and not f.optional and f.default is None:
                raise AsnError("field %s of class %s is not set" % (f.name, cls.name),
                               braced.loc)
        for setting in settings.values():
            set_scope(setting, scope)
        return settings

    def default_syntax(self, p, cls, settings):
        while not p.at(L.EOF):
            name = p.expect(L.FIELDREF, "a field name")
            field = cls.field(name.text)
            if field is None:
                raise AsnError("class %s has no field %s" % (cls.name, name.text), name.loc)
            settings[field.name] = self.parse_setting(p, field)
            if not p.accept_sym(","):
                break
        if not p.at(L.EOF):
            p.fail("expected ',' or the end of the object")

    def match_syntax(self, p, cls, items, settings, cont):
        """Match WITH SYNTAX items against the tokens; optional groups are tried
        present first, then absent, so a group is skipped whenever the rest fits."""
        if not items:
            return cont()
        head, rest = items[0], items[1:]
        if isinstance(head, list):
            saved_pos, saved = p.i, dict(settings)
            if self.match_syntax(p, cls, head,
                                 settings, lambda: self.match_syntax(p, cls, rest, settings,
                                                                     cont)):
                return True
            p.i = saved_pos
            settings.clear()
            settings.update(saved)
            return self.match_syntax(p, cls, rest, settings, cont)
        kind, text = head
        try:
            if kind == "word":
                if p.tok.text != text or p.tok.kind in (L.CSTRING, L.EOF):
                    p.fail("expected %s" % text)
                p.advance()
            else:
                field = cls.field(text)
                if field is None:
                    raise AsnError("class %s has no field %s" % (cls.name, text), p.tok.loc)
                settings[text] = self.parse_setting(p, field)
        except AsnError as e:
            self.note_error(e)
            return False
        return self.match_syntax(p, cls, rest, settings, cont)

    def note_error(self, e):
        # Of the failed attempts, the one that got furthest says most about the fault.
        best = self.best_error
        if best is None or (e.location and best.location and
                            (e.location.line, e.location.column) >
                            (best.location.line, best.location.column)):
            self.best_error = e

    def parse_setting(self, p, field):
        if field.kind == "type":
            return p.type_()
        if field.kind in ("objectset", "valueset"):
            return p.object_set_spec() if p.at_sym("{") else p.value()
        return p.value()

    def resolve_settings(self, obj):
        for name, setting in list(obj.settings.items()):
            field = obj.cls.field(name)
            if field.kind == "type":
                obj.settings[name] = self.resolve_type(setting)
                for step in (self.evaluate_type_numbers, self.evaluate_type_values):
                    for node in iter_types(obj.settings[name]):
                        step(node)
            elif field.kind == "value":
                obj.settings[name] = self.evaluate(setting, field.governor, obj.module)

    def expand_set(self, spec, class_ref, scope, set_name, seen=None):
        """The members of an object set in definition order; inline objects are named
        <Set>_<n>."""
        if spec.objects is not None:
            return spec.objects
        seen = seen or set()
        if id(spec) in seen:
            self.error("object set '%s' contains itself" % set_name, spec.loc)
            return []
        seen.add(id(spec))
        members, inline_count = [], 0
        for kind, item in spec.elements:
            try:
                if kind == "object":
                    members.append(self.object_by_reference(item, scope))
                elif kind == "set":
                    members.extend(self.members_of_set(item, scope, seen))
                else:
                    inline_count += 1
                    members.append(self.inline_object(item, class_ref, scope,
                                                      "%s_%d" % (set_name, inline_count)))
            except AsnError as e:
                self.errors.append(e)
        spec.objects = members
        return members

    def members_of_set(self, ref, scope, seen):
        a = self.lookup(ref.module or scope, ref.name, ref.module_name)
        if not isinstance(a, M.ObjectSetAssignment):
            raise AsnError("'%s' is not an object set" % ref.name, ref.loc)
        return self.expand_set(a.spec, a.class_ref, a.module, a.name, seen)

    def inline_object(self, braced, class_ref, scope, name):
        obj = M.InfoObject(name.replace("-", "_"), class_ref, loc=braced.loc)
        obj.module = scope
        obj.source = braced
        obj.inline = True
        self.define_object(obj)
        return obj

    # ================================================================ pass 6: tables

    def link_table_constraints(self):
        for m in self.modules.values():
            for a in m.assignments:
                if isinstance(a, M.TypeAssignment) and not a.params:
                    self.link_tables_of(a)

    def link_tables_of(self, a):
        top = a.type
        if not isinstance(top, M.SequenceType):
            return
        for c in top.components:
            found = find_table_constraint(c.type)
            if found is None:
                continue
            field_type, table = found
            cls = field_type.target_class
            set_assignment = None
            try:
                set_assignment = self.table_set(table, cls, a.module)
            except AsnError as e:
                self.errors.append(e)
            for path in table.at_refs:
                if path[0] != "." and not any(k.name == path[0] for k in top.components):
                    self.error("@%s does not name a component of %s" % (".".join(path),
                               a.name), table.loc)
            c.table = TableLink(table.object_set, set_assignment, table.at_refs[0],
                                field_type.field_names[0], cls)
            a.table_constrained = True

    def table_set(self, table, cls, scope):
        spec = table.object_set
        named = None
        if len(spec.elements) == 1 and spec.elements[0][0] == "set":
            ref = spec.elements[0][1]
            named = self.lookup(ref.module or scope, ref.name, ref.module_name)
            if not isinstance(named, M.ObjectSetAssignment):
                raise AsnError("'%s' is not an object set" % ref.name, ref.loc)
        class_ref = M.ClassRef(cls.name if cls else "?", None, table.loc)
        self.expand_set(spec, class_ref, scope, named.name if named else "table")
        return named


# ==================================================================== helpers

def find_table_constraint(t):
    """(class field type, TableConstraint) when `t`, an OCTET STRING containing it or
    the element of a SEQUENCE OF/SET OF carries a table constraint with an
    @-reference; None otherwise."""
    if isinstance(t, M.SequenceOfType):
        return find_table_constraint(t.element)
    for c in t.constraints:
        for node in iter_constraint_nodes(c):
            if isinstance(node, M.TableConstraint) and node.at_refs and isinstance(
                    t, M.ClassFieldType):
                return t, node
            if isinstance(node, M.ContentsConstraint) and node.type is not None:
                inner = find_table_constraint(node.type)
                if inner is not None:
                    return inner
    return None


def iter_constraint_nodes(constraint):
    stack = [constraint.root, constraint.additions]
    while stack:
        node = stack.pop()
        if node is None:
            continue
        yield node
        if isinstance(node, M.SetOperation):
            stack.extend(node.operands)
        elif isinstance(node, (M.SizeConstraint, M.PermittedAlphabet)):
            stack.extend([node.constraint.root, node.constraint.additions])
        elif isinstance(node, M.InnerTypeConstraints):
            if node.single is not None:
                stack.extend([node.single.root, node.single.additions])
            for _, inner, _ in node.components:
                if inner is not None:
                    stack.extend([inner.root, inner.additions])


def child_types(t):
    """The type nodes directly inside `t`."""
    if isinstance(t, M.SequenceType):
        return [c.type for c in (t.components if t.components is not None else
                                 [m for m in t.members if isinstance(m, M.Component)])]
    if isinstance(t, M.ChoiceType):
        return [a.type for a in t.alternatives]
    if isinstance(t, M.SequenceOfType):
        return [t.element]
    return []


def iter_types(t):
    """`t` and every type written inside it (references are not followed)."""
    stack = [t]
    while stack:
        node = stack.pop()
        yield node
        stack.extend(reversed(child_types(node)))


def set_scope(node, module):
    """Record on every syntax node the module its names are to be looked up in."""
    stack = [node]
    while stack:
        n = stack.pop()
        if isinstance(n, (list, tuple)):
            stack.extend(n)
            continue
        if not isinstance(n, M.Node) or isinstance(n, M.Module):
            continue
        if isinstance(n, (M.Type, M.ValueRef, M.ClassRef)):
            if getattr(n, "module", None) is not None:
                continue
            n.module = module
        for key, value in vars(n).items():
            if key in ("module", "target", "target_class", "field", "repr", "wire_tags",
                       "cls", "objects", "table"):
                continue
            if isinstance(value, (M.Node, list, tuple)):
                stack.append(value)


def substitute(node, bindings, memo):
    """Replace the dummy names of a parameterised body by the actual parameters."""
    if isinstance(node, list):
        return [substitute(n, bindings, memo) for n in node]
    if isinstance(node, tuple):
        return tuple(substitute(n, bindings, memo) for n in node)
    if not isinstance(node, M.Node) or isinstance(node, M.Module):
        return node
    if isinstance(node, M.TypeRef) and node.module_name is None and node.ref_name in bindings:
        return bound_type(node, bindings[node.ref_name], memo)
    if isinstance(node, M.ValueRef) and node.module_name is None and node.name in bindings:
        arg = bindings[node.name]
        return arg if isinstance(arg, M.Value) else node
    if isinstance(node, M.ObjectSetSpec):
        return bound_set(node, bindings)
    for key, value in list(vars(node).items()):
        if key in ("module", "target", "loc"):
            continue
        if isinstance(value, (M.Node, list, tuple)):
            setattr(node, key, substitute(value, bindings, memo))
    return node


def bound_type(ref, arg, memo):
    if not isinstance(arg, M.Type):
        return ref
    # Each use of a dummy gets its own copy: a body may use a parameter twice.
    actual = copy.deepcopy(arg, dict(memo))
    actual.tags = ref.tags + arg.tags
    actual.constraints = list(arg.constraints) + ref.constraints
    return actual


def bound_set(spec, bindings):
    elements = []
    for kind, item in spec.elements:
        arg = bindings.get(item.name) if kind == "set" and item.module_name is None else None
        if isinstance(arg, M.ObjectSetSpec):
            elements.extend(arg.elements)
        elif kind == "set" and isinstance(arg, M.TypeRef):
            elements.append(("set", M.ValueRef(arg.ref_name, arg.module_name, arg.loc)))
            elements[-1][1].module = arg.module
        else:
            elements.append((kind, item))
    result = M.ObjectSetSpec(elements, spec.extensible, spec.loc)
    return result


def resolve(modules):
    return Resolver(modules).run()
