"""Recursive-descent parser for the ASN.1 the modules use.

One method per grammar rule, named after the rule. What cannot be decided from the
text alone (whether "name Governor ::= {...}" is a value or an information object,
what a braced value means) is kept in a neutral form and settled by the resolver,
which knows what every name refers to across modules.
"""

from . import lexer as L
from . import model as M
from .errors import AsnError

STRING_TYPES = ("BMPString", "GeneralString", "GraphicString", "IA5String",
                "ISO646String", "NumericString", "PrintableString", "T61String",
                "TeletexString", "UniversalString", "UTF8String", "VideotexString",
                "VisibleString")
SIMPLE_TYPES = STRING_TYPES + ("BOOLEAN", "NULL", "REAL", "GeneralizedTime", "UTCTime",
                               "ObjectDescriptor", "EXTERNAL", "RELATIVE-OID")
TAG_CLASSES = ("UNIVERSAL", "APPLICATION", "PRIVATE")


class Parser:
    def __init__(self, tokens):
        self.toks = tokens
        self.i = 0

    # ------------------------------------------------------------ token helpers

    @property
    def tok(self):
        return self.toks[self.i]

    def peek(self, offset=1):
        j = min(self.i + offset, len(self.toks) - 1)
        return self.toks[j]

    def at(self, kind, text=None):
        return self.tok.is_(kind, text)

    def at_sym(self, text):
        return self.tok.is_(L.SYMBOL, text)

    def at_kw(self, *words):
        return self.tok.kind == L.KEYWORD and self.tok.text in words

    def advance(self):
        t = self.tok
        if t.kind != L.EOF:
            self.i += 1
        return t

    def accept_sym(self, text):
        if self.at_sym(text):
            return self.advance()
        return None

    def accept_kw(self, word):
        if self.at_kw(word):
            return self.advance()
        return None

    def expect_sym(self, text):
        if not self.at_sym(text):
            self.fail("expected '%s'" % text)
        return self.advance()

    def expect_kw(self, word):
        if not self.at_kw(word):
            self.fail("expected %s" % word)
        return self.advance()

    def expect(self, kind, what):
        if self.tok.kind != kind:
            self.fail("expected %s" % what)
        return self.advance()

    def fail(self, message):
        found = self.tok.text if self.tok.kind != L.EOF else "end of text"
        raise AsnError("%s, found '%s'" % (message, found), self.tok.loc)

    def braced_tokens(self):
        """Consume a balanced { ... } and return the tokens inside it."""
        open_tok = self.expect_sym("{")
        depth = 1
        start = self.i
        while depth:
            if self.at(L.EOF):
                raise AsnError("unbalanced '{'", open_tok.loc)
            if self.at_sym("{"):
                depth += 1
            elif self.at_sym("}"):
                depth -= 1
            self.advance()
        return self.toks[start:self.i - 1]

    # ------------------------------------------------------------ modules

    def module_definitions(self):
        modules = []
        while not self.at(L.EOF):
            modules.append(self.module_definition())
        if not modules:
            self.fail("expected a module definition")
        return modules

    def module_definition(self):
        name_tok = self.expect(L.TYPEREF, "a module name")
        if self.at_sym("{"):
            self.braced_tokens()        # the module's object identifier: not needed
        self.expect_kw("DEFINITIONS")
        tag_default = self.tag_default()
        implied = False
        if self.accept_kw("EXTENSIBILITY"):
            self.expect_kw("IMPLIED")
            implied = True
        self.expect_sym("::=")
        self.expect_kw("BEGIN")
        exports = self.exports()
        imports = self.imports()
        assignments = []
        while not self.at_kw("END"):
            if self.at(L.EOF):
                self.fail("expected END")
            assignments.append(self.assignment())
        self.expect_kw("END")
        return M.Module(name_tok.text, tag_default, implied, exports, imports,
                        assignments, name_tok.loc)

    def tag_default(self):
        if self.at_kw("EXPLICIT", "IMPLICIT", "AUTOMATIC"):
            mode = self.advance().text
            self.expect_kw("TAGS")
            return mode
        return "EXPLICIT"

    def exports(self):
        if not self.accept_kw("EXPORTS"):
            return None
        if self.accept_kw("ALL"):
            self.expect_sym(";")
            return None
        names = []
        while not self.accept_sym(";"):
            names.append(self.symbol()[0])
            self.accept_sym(",")
        return names

    def imports(self):
        if not self.accept_kw("IMPORTS"):
            return []
        groups = []
        while not self.accept_sym(";"):
            groups.append(self.symbols_from_module())
        return groups

    def symbols_from_module(self):
        symbols = [self.symbol()]
        while self.accept_sym(","):
            symbols.append(self.symbol())
        self.expect_kw("FROM")
        module_tok = self.expect(L.TYPEREF, "a module name")
        self.assigned_identifier()
        return M.Import(symbols, module_tok.text, module_tok.loc)

    def symbol(self):
        if self.tok.kind not in (L.TYPEREF, L.VALUEREF) and not (
                self.tok.kind == L.KEYWORD and self.tok.text in STRING_TYPES):
            self.fail("expected a name to import or export")
        t = self.advance()
        if self.at_sym("{"):            # "Name{}" marks a parameterised name
            self.expect_sym("{")
            self.expect_sym("}")
        return (t.text, t.loc)

    def assigned_identifier(self):
        # After "FROM Module", an object identifier or a value naming it may follow.
        # A lone value reference is the next import's first symbol when a comma or
        # FROM follows it.
        if self.at_sym("{"):
            self.braced_tokens()
        elif self.at(L.VALUEREF) and not (self.peek().is_(L.SYMBOL, ",")
                                          or self.peek().is_(L.KEYWORD, "FROM")):
            self.advance()

    # ------------------------------------------------------------ assignments

    def assignment(self):
        t = self.tok
        if t.kind == L.TYPEREF or (t.kind == L.KEYWORD and t.text in STRING_TYPES
                                   and self.peek().is_(L.SYMBOL, "::=")):
            return self.type_level_assignment()
        if t.kind == L.VALUEREF:
            return self.value_level_assignment()
        self.fail("expected an assignment")

    def type_level_assignment(self):
        """Type, class, parameterised type and object set assignments."""
        name_tok = self.advance()
        params = self.parameter_list() if self.at_sym("{") else None
        if (self.at(L.TYPEREF) or self.at_kw("TYPE-IDENTIFIER")) and \
                not self.peek().is_(L.SYMBOL, "."):
            return self.set_assignment(name_tok, params)
        self.expect_sym("::=")
        if self.at_kw("CLASS"):
            return M.ClassAssignment(name_tok.text, self.object_class(name_tok.text),
                                     loc=name_tok.loc)
        if self.at_kw("TYPE-IDENTIFIER") and not self.peek().is_(L.SYMBOL, "."):
            alias = M.ClassRef("TYPE-IDENTIFIER", loc=self.advance().loc)
            return M.ClassAssignment(name_tok.text, alias=alias, loc=name_tok.loc)
        return M.TypeAssignment(name_tok.text, self.type_(), params, name_tok.loc)

    def set_assignment(self, name_tok, params):
        if self.at_kw("TYPE-IDENTIFIER"):
            gov_module, gov_name = None, self.advance().text
        else:
            gov_module, gov_name = self.qualified_reference(L.TYPEREF)
        self.expect_sym("::=")
        spec = self.object_set_spec()
        a = M.SetAssignment(name_tok.text, gov_name, gov_module, spec, name_tok.loc)
        a.params = params
        return a

    def value_level_assignment(self):
        """Value and information object assignments: name Governor ::= value."""
        name_tok = self.advance()
        if self.at_kw("TYPE-IDENTIFIER") and self.peek().is_(L.SYMBOL, "::="):
            self.advance()
            self.advance()
            return M.GovernedAssignment(name_tok.text, "TYPE-IDENTIFIER", None, self.value(),
                                        name_tok.loc)
        if self.at(L.TYPEREF) and (self.peek().is_(L.SYMBOL, "::=")
                                   or self.peek().is_(L.SYMBOL, ".")
                                   and self.peek(2).kind == L.TYPEREF
                                   and self.peek(3).is_(L.SYMBOL, "::=")):
            gov_module, gov_name = self.qualified_reference(L.TYPEREF)
            self.expect_sym("::=")
            return M.GovernedAssignment(name_tok.text, gov_name, gov_module,
                                        self.value(), name_tok.loc)
        governor = self.type_()
        self.expect_sym("::=")
        return M.ValueAssignment(name_tok.text, governor, self.value(), name_tok.loc)

    def qualified_reference(self, kind):
        """Name or Module.Name; returns (module or None, name)."""
        first = self.expect(kind, "a reference")
        if self.at_sym(".") and self.peek().kind in (L.TYPEREF, L.VALUEREF):
            self.advance()
            return first.text, self.advance().text
        return None, first.text

    def parameter_list(self):
        self.expect_sym("{")
        params = [self.parameter()]
        while self.accept_sym(","):
            params.append(self.parameter())
        self.expect_sym("}")
        return params

    def parameter(self):
        loc = self.tok.loc
        if self.peek().is_(L.SYMBOL, ":") or (self.at(L.TYPEREF) and self.peek().is_(
                L.SYMBOL, ".") and self.peek(3).is_(L.SYMBOL, ":")):
            governor = self.type_()
            self.expect_sym(":")
        else:
            governor = None
        if self.tok.kind not in (L.TYPEREF, L.VALUEREF):
            self.fail("expected a parameter name")
        return M.Parameter(self.advance().text, governor, loc)

    # ------------------------------------------------------------ types

    def type_(self):
        """A type with its tag and any constraints that follow it."""
        loc = self.tok.loc
        if self.at_sym("["):
            tag = self.tag()
            inner = self.type_()
            inner.tags.insert(0, tag)
            inner.loc = loc
            return inner
        t = self.untagged_type()
        while self.at_sym("("):
            t.constraints.append(self.constraint())
        return t

    def tag(self):
        loc = self.expect_sym("[").loc
        tag_class = "CONTEXT"
        if self.at_kw(*TAG_CLASSES):
            tag_class = self.advance().text
        if self.at(L.NUMBER):
            number = int(self.advance().text)
        elif self.at(L.VALUEREF):
            number = self.defined_value()
        else:
            self.fail("expected a tag number")
        self.expect_sym("]")
        mode = None
        if self.at_kw("IMPLICIT", "EXPLICIT"):
            mode = self.advance().text
        return M.Tag(tag_class, number, mode, loc)

    def untagged_type(self):
        t = self.tok
        if t.kind == L.KEYWORD:
            method = self.BUILTIN_RULES.get(t.text)
            if method:
                return method(self)
            if t.text in SIMPLE_TYPES:
                return M.PrimitiveType(self.advance().text, t.loc)
            if t.text == "TYPE-IDENTIFIER":
                return self.class_field_type(self.class_reference())
            self.fail("expected a type")
        if t.kind == L.TYPEREF:
            return self.referenced_type()
        self.fail("expected a type")

    def octet_string_type(self):
        loc = self.expect_kw("OCTET").loc
        self.expect_kw("STRING")
        return M.PrimitiveType("OCTET STRING", loc)

    def object_identifier_type(self):
        loc = self.expect_kw("OBJECT").loc
        self.expect_kw("IDENTIFIER")
        return M.PrimitiveType("OBJECT IDENTIFIER", loc)

    def character_string_type(self):
        loc = self.expect_kw("CHARACTER").loc
        self.expect_kw("STRING")
        return M.PrimitiveType("CHARACTER STRING", loc)

    def embedded_pdv_type(self):
        loc = self.expect_kw("EMBEDDED").loc
        self.expect_kw("PDV")
        return M.PrimitiveType("EMBEDDED PDV", loc)

    def integer_type(self):
        loc = self.expect_kw("INTEGER").loc
        named = self.named_number_list() if self.at_sym("{") else []
        return M.IntegerType(named, loc)

    def bit_string_type(self):
        loc = self.expect_kw("BIT").loc
        self.expect_kw("STRING")
        named = self.named_number_list() if self.at_sym("{") else []
        return M.BitStringType(named, loc)

    def named_number_list(self):
        self.expect_sym("{")
        items = [self.named_number()]
        while self.accept_sym(","):
            items.append(self.named_number())
        self.expect_sym("}")
        return items

    def named_number(self):
        name_tok = self.expect(L.VALUEREF, "a name")
        self.expect_sym("(")
        value = self.signed_number_or_reference()
        self.expect_sym(")")
        return M.NamedNumber(name_tok.text, value, name_tok.loc)

    def signed_number_or_reference(self):
        if self.at(L.VALUEREF):
            return self.defined_value()
        negative = self.accept_sym("-") is not None
        n = int(self.expect(L.NUMBER, "a number").text)
        return -n if negative else n

    def enumerated_type(self):
        loc = self.expect_kw("ENUMERATED").loc
        self.expect_sym("{")
        root, additions, extensible = [], [], False
        while True:
            if self.accept_sym("..."):
                extensible = True
                self.exception_spec()
            else:
                (additions if extensible else root).append(self.enumeration_item())
            if not self.accept_sym(","):
                break
        self.expect_sym("}")
        return M.EnumeratedType(root, extensible, additions, loc)

    def enumeration_item(self):
        name_tok = self.expect(L.VALUEREF, "an enumeration name")
        value = None
        if self.accept_sym("("):
            value = self.signed_number_or_reference()
            self.expect_sym(")")
        return M.NamedNumber(name_tok.text, value, name_tok.loc)

    def sequence_type(self):
        return self.structured_type("SEQUENCE")

    def set_type(self):
        return self.structured_type("SET")

    def structured_type(self, keyword):
        loc = self.expect_kw(keyword).loc
        if self.at_kw("OF") or self.at_kw("SIZE") or self.at_sym("("):
            return self.collection_of(keyword, loc)
        self.expect_sym("{")
        members = self.component_type_list() if not self.at_sym("}") else []
        self.expect_sym("}")
        return M.SequenceType(keyword, members, loc)

    def collection_of(self, keyword, loc):
        """SEQUENCE [SIZE (...) | (constraint)] OF [name] Type."""
        constraints = []
        if self.at_kw("SIZE"):
            size_loc = self.advance().loc
            size = M.SizeConstraint(self.constraint(), size_loc)
            constraints.append(M.Constraint(size, loc=size_loc))
        elif self.at_sym("("):
            constraints.append(self.constraint())
        self.expect_kw("OF")
        element_name = None
        if self.at(L.VALUEREF) and self.peek().kind in (L.TYPEREF, L.KEYWORD) or (
                self.at(L.VALUEREF) and self.peek().is_(L.SYMBOL, "[")):
            element_name = self.advance().text
        result = M.SequenceOfType(keyword + " OF", self.type_(), element_name, loc)
        result.constraints = constraints
        return result

    def component_type_list(self):
        members = []
        in_extension = False
        while True:
            if self.at_sym("..."):
                members.append(M.ExtensionMarker(self.advance().loc))
                self.exception_spec()
                in_extension = not in_extension
            elif self.at_sym("[["):
                members.extend(self.extension_addition_group())
            elif self.at_kw("COMPONENTS"):
                loc = self.advance().loc
                self.expect_kw("OF")
                members.append(M.ComponentsOf(self.type_(), loc))
            else:
                c = self.component_type()
                c.extension = in_extension
                members.append(c)
            if not self.accept_sym(","):
                return members

    def extension_addition_group(self):
        self.expect_sym("[[")
        if self.at(L.NUMBER) and self.peek().is_(L.SYMBOL, ":"):
            self.advance()
            self.advance()
        members = self.component_type_list()
        self.expect_sym("]]")
        for m in members:
            if isinstance(m, M.Component):
                m.extension = True
        return members

    def component_type(self):
        name_tok = self.expect(L.VALUEREF, "a component name")
        comp = M.Component(name_tok.text, self.type_(), loc=name_tok.loc)
        if self.accept_kw("OPTIONAL"):
            comp.optional = True
        elif self.accept_kw("DEFAULT"):
            comp.default = self.value()
        return comp

    def exception_spec(self):
        if self.accept_sym("!"):
            if self.at(L.TYPEREF) or self.at(L.KEYWORD):
                self.type_()
                self.expect_sym(":")
            self.value()

    def choice_type(self):
        loc = self.expect_kw("CHOICE").loc
        self.expect_sym("{")
        alternatives, extensible = [], False
        while True:
            if self.accept_sym("..."):
                extensible = True
                self.exception_spec()
            elif self.at_sym("[["):
                alternatives.extend(self.extension_addition_group())
            else:
                alt = self.component_type()
                if alt.optional or alt.default is not None:
                    raise AsnError("a CHOICE alternative cannot be OPTIONAL or DEFAULT",
                                   alt.loc)
                alt.extension = extensible
                alternatives.append(alt)
            if not self.accept_sym(","):
                break
        self.expect_sym("}")
        return M.ChoiceType(alternatives, extensible, loc)

    def any_type(self):
        loc = self.expect_kw("ANY").loc
        defined_by = None
        if self.accept_kw("DEFINED"):
            self.expect_kw("BY")
            defined_by = self.expect(L.VALUEREF, "a component name").text
        return M.AnyType(defined_by, loc)

    def instance_of_type(self):
        loc = self.expect_kw("INSTANCE").loc
        self.expect_kw("OF")
        return M.InstanceOfType(self.class_reference(), loc)

    def class_reference(self):
        loc = self.tok.loc
        if self.at_kw("TYPE-IDENTIFIER", "ABSTRACT-SYNTAX"):
            return M.ClassRef(self.advance().text, loc=loc)
        module, name = self.qualified_reference(L.TYPEREF)
        return M.ClassRef(name, module, loc)

    def class_field_type(self, class_ref):
        fields = []
        while self.accept_sym("."):
            fields.append(self.expect(L.FIELDREF, "a field name").text)
        if not fields:
            self.fail("expected '.&field' after the class name")
        return M.ClassFieldType(class_ref, fields, class_ref.loc)

    def referenced_type(self):
        """Type, Module.Type, Type{params} or CLASS.&field."""
        loc = self.tok.loc
        first = self.advance()
        module = None
        name = first.text
        if self.at_sym(".") and self.peek().kind == L.FIELDREF:
            return self.class_field_type(M.ClassRef(name, loc=loc))
        if self.at_sym(".") and self.peek().kind == L.TYPEREF:
            self.advance()
            module, name = name, self.advance().text
            if self.at_sym(".") and self.peek().kind == L.FIELDREF:
                return self.class_field_type(M.ClassRef(name, module, loc))
        params = self.actual_parameter_list() if self.at_sym("{") else None
        return M.TypeRef(name, module, params, loc)

    def actual_parameter_list(self):
        self.expect_sym("{")
        params = [self.actual_parameter()]
        while self.accept_sym(","):
            params.append(self.actual_parameter())
        self.expect_sym("}")
        return params

    def actual_parameter(self):
        """A type, a value, or an object set in braces."""
        if self.at_sym("{"):
            return self.object_set_spec()
        if self.at(L.TYPEREF) or self.at_sym("[") or (
                self.at(L.KEYWORD) and self.tok.text not in ("TRUE", "FALSE", "NULL",
                                                            "MIN", "MAX")):
            return self.type_()
        return self.value()

    # ------------------------------------------------------------ constraints

    def constraint(self):
        loc = self.expect_sym("(").loc
        if self.at_kw("CONSTRAINED"):
            root = self.user_defined_constraint()
            self.expect_sym(")")
            return M.Constraint(root, loc=loc)
        root, extensible, additions = self.element_set_specs()
        self.exception_spec()
        self.expect_sym(")")
        return M.Constraint(root, extensible, additions, loc)

    def element_set_specs(self):
        if self.accept_sym("..."):
            additions = self.element_set_spec() if self.accept_sym(",") else None
            return None, True, additions
        root = self.element_set_spec()
        extensible, additions = False, None
        if self.accept_sym(","):
            self.expect_sym("...")
            self.exception_spec()
            extensible = True
            if self.accept_sym(","):
                additions = self.element_set_spec()
        return root, extensible, additions

    def element_set_spec(self):
        if self.at_kw("ALL"):
            loc = self.advance().loc
            self.expect_kw("EXCEPT")
            return M.SetOperation("EXCEPT", [None, self.elements()], loc)
        return self.unions()

    def unions(self):
        items = [self.intersections()]
        while self.accept_sym("|") or self.accept_kw("UNION"):
            items.append(self.intersections())
        return items[0] if len(items) == 1 else M.SetOperation("UNION", items,
                                                               items[0].loc)

    def intersections(self):
        items = [self.intersection_elements()]
        while self.accept_sym("^") or self.accept_kw("INTERSECTION"):
            items.append(self.intersection_elements())
        return items[0] if len(items) == 1 else M.SetOperation("INTERSECTION", items,
                                                               items[0].loc)

    def intersection_elements(self):
        e = self.elements()
        if self.accept_kw("EXCEPT"):
            return M.SetOperation("EXCEPT", [e, self.elements()], e.loc)
        return e

    def elements(self):
        loc = self.tok.loc
        if self.at_sym("("):
            self.advance()
            inner, _, _ = self.element_set_specs()
            self.expect_sym(")")
            return inner
        if self.at_kw("SIZE"):
            self.advance()
            return M.SizeConstraint(self.constraint(), loc)
        if self.at_kw("FROM"):
            self.advance()
            return M.PermittedAlphabet(self.constraint(), loc)
        if self.at_kw("WITH"):
            return self.inner_type_constraints()
        if self.at_kw("PATTERN"):
            self.advance()
            return M.PatternConstraint(self.value(), loc)
        if self.at_kw("INCLUDES"):
            self.advance()
            return M.ContainedSubtype(self.type_(), loc)
        if self.at_kw("CONTAINING", "ENCODED"):
            return self.contents_constraint()
        if self.at_kw("CONSTRAINED"):
            return self.user_defined_constraint()
        if self.at_sym("{") and self.looks_like_object_set():
            return self.table_constraint()
        if self.at(L.TYPEREF) or (self.at(L.KEYWORD) and self.tok.text not in (
                "TRUE", "FALSE", "NULL", "MIN", "MAX", "PLUS-INFINITY",
                "MINUS-INFINITY")):
            return M.ContainedSubtype(self.type_(), loc)
        return self.value_or_range()

    def looks_like_object_set(self):
        nxt = self.peek()
        return (nxt.kind == L.TYPEREF or nxt.is_(L.SYMBOL, "}")
                or nxt.is_(L.SYMBOL, "..."))

    def value_or_range(self):
        loc = self.tok.loc
        lower = self.range_endpoint()
        lower_open = self.accept_sym("<") is not None
        if not self.accept_sym(".."):
            if lower_open:
                self.fail("expected '..'")
            return M.SingleValue(lower, loc)
        upper_open = self.accept_sym("<") is not None
        upper = self.range_endpoint()
        return M.ValueRange(lower, upper, lower_open, upper_open, loc)

    def range_endpoint(self):
        if self.at_kw("MIN", "MAX"):
            t = self.advance()
            return M.SpecialValue(t.text, t.loc)
        return self.value()

    def inner_type_constraints(self):
        loc = self.expect_kw("WITH").loc
        if self.accept_kw("COMPONENT"):
            return M.InnerTypeConstraints(self.constraint(), False, [], loc)
        self.expect_kw("COMPONENTS")
        self.expect_sym("{")
        partial = False
        if self.accept_sym("..."):
            partial = True
            self.expect_sym(",")
        items = [self.named_constraint()]
        while self.accept_sym(","):
            items.append(self.named_constraint())
        self.expect_sym("}")
        return M.InnerTypeConstraints(None, partial, items, loc)

    def named_constraint(self):
        name = self.expect(L.VALUEREF, "a component name").text
        value_constraint = self.constraint() if self.at_sym("(") else None
        presence = None
        if self.at_kw("PRESENT", "ABSENT", "OPTIONAL"):
            presence = self.advance().text
        return (name, value_constraint, presence)

    def contents_constraint(self):
        loc = self.tok.loc
        contained, encoded_by = None, None
        if self.accept_kw("CONTAINING"):
            contained = self.type_()
        if self.accept_kw("ENCODED"):
            self.expect_kw("BY")
            encoded_by = self.value()
        return M.ContentsConstraint(contained, encoded_by, loc)

    def user_defined_constraint(self):
        loc = self.expect_kw("CONSTRAINED").loc
        self.expect_kw("BY")
        self.braced_tokens()
        return M.UserConstraint(loc)

    def table_constraint(self):
        loc = self.tok.loc
        object_set = self.object_set_spec()
        at_refs = []
        if self.at_sym("{") and self.peek().is_(L.SYMBOL, "@"):
            self.advance()
            at_refs.append(self.at_notation())
            while self.accept_sym(","):
                at_refs.append(self.at_notation())
            self.expect_sym("}")
        return M.TableConstraint(object_set, at_refs, loc)

    def at_notation(self):
        self.expect_sym("@")
        path = []
        while self.accept_sym("."):
            path.append(".")
        path.append(self.expect(L.VALUEREF, "a component name").text)
        while self.accept_sym("."):
            path.append(self.expect(L.VALUEREF, "a component name").text)
        return path

    # ------------------------------------------------------------ classes, objects

    def object_class(self, name):
        loc = self.expect_kw("CLASS").loc
        self.expect_sym("{")
        fields = [self.field_spec()]
        while self.accept_sym(","):
            fields.append(self.field_spec())
        self.expect_sym("}")
        syntax = None
        if self.accept_kw("WITH"):
            self.expect_kw("SYNTAX")
            syntax = self.syntax_list()
        return M.ObjectClass(name, fields, syntax, loc)

    def field_spec(self):
        name_tok = self.expect(L.FIELDREF, "a field name")
        name = name_tok.text
        spec = M.FieldSpec(name, "type", loc=name_tok.loc)
        if not (self.at_sym(",") or self.at_sym("}") or self.at_kw("OPTIONAL")
                or self.at_kw("DEFAULT")):
            spec.governor = self.type_()
            spec.kind = "value" if name[1].islower() else "valueset"
        if self.accept_kw("UNIQUE"):
            spec.unique = True
        if self.accept_kw("OPTIONAL"):
            spec.optional = True
        elif self.accept_kw("DEFAULT"):
            spec.default = self.type_() if spec.kind == "type" else self.value()
        return spec

    def syntax_list(self):
        """WITH SYNTAX { ... }: a list of literal words, field names and optional
        groups; a group is a nested list."""
        self.expect_sym("{")
        items = self.syntax_items("}")
        self.expect_sym("}")
        return items

    def syntax_items(self, closer):
        items = []
        while not self.at_sym(closer):
            if self.at(L.EOF):
                self.fail("unterminated WITH SYNTAX")
            if self.accept_sym("["):
                group = self.syntax_items("]")
                self.expect_sym("]")
                items.append(group)
            else:
                t = self.advance()
                items.append(("field", t.text) if t.kind == L.FIELDREF else ("word", t.text))
        return items

    def object_set_spec(self):
        """{ element | element, ... } for object sets."""
        loc = self.expect_sym("{").loc
        elements, extensible = [], False
        while not self.at_sym("}"):
            if self.accept_sym("..."):
                extensible = True
            elif self.at_sym("{"):
                brace_loc = self.tok.loc
                inline = M.BracedValue(self.braced_tokens(), brace_loc)
                inline.end_loc = self.toks[self.i - 1].loc
                elements.append(("inline", inline))
            elif self.at(L.TYPEREF) or self.at(L.VALUEREF):
                # Module.name is an object, Module.Name a set: the case of the last
                # name tells them apart.
                ref_loc = self.tok.loc
                module, name = self.qualified_reference(self.tok.kind)
                kind = "set" if name[0].isupper() else "object"
                elements.append((kind, M.ValueRef(name, module, ref_loc)))
            else:
                self.fail("expected an object, an object set or '...'")
            if not (self.accept_sym("|") or self.accept_kw("UNION") or self.accept_sym(",")):
                break
        self.expect_sym("}")
        return M.ObjectSetSpec(elements, extensible, loc)

    # ------------------------------------------------------------ values

    def value(self):
        t = self.tok
        if t.kind == L.NUMBER:
            self.advance()
            return M.IntegerValue(int(t.text), t.loc)
        if t.kind == L.REALNUM:
            self.advance()
            return M.RealValue(t.text, t.loc)
        if t.is_(L.SYMBOL, "-"):
            self.advance()
            n = self.tok
            if n.kind == L.NUMBER:
                self.advance()
                return M.IntegerValue(-int(n.text), t.loc)
            if n.kind == L.REALNUM:
                self.advance()
                return M.RealValue("-" + n.text, t.loc)
            self.fail("expected a number after '-'")
        if t.kind == L.KEYWORD:
            return self.keyword_value()
        if t.kind == L.BSTRING:
            self.advance()
            return M.BitStringValue(t.text, False, t.loc)
        if t.kind == L.HSTRING:
            self.advance()
            return M.BitStringValue(t.text, True, t.loc)
        if t.kind == L.CSTRING:
            self.advance()
            return M.StringValue(t.text, t.loc)
        if t.is_(L.SYMBOL, "{"):
            value = M.BracedValue(self.braced_tokens(), t.loc)
            value.end_loc = self.toks[self.i - 1].loc
            return value
        if t.kind == L.VALUEREF:
            return self.named_or_referenced_value()
        if t.kind == L.TYPEREF and self.peek().is_(L.SYMBOL, "."):
            return self.defined_value()
        self.fail("expected a value")

    def keyword_value(self):
        t = self.advance()
        if t.text in ("TRUE", "FALSE"):
            return M.BooleanValue(t.text == "TRUE", t.loc)
        if t.text == "NULL":
            return M.NullValue(t.loc)
        if t.text in ("PLUS-INFINITY", "MINUS-INFINITY", "MIN", "MAX"):
            return M.SpecialValue(t.text, t.loc)
        raise AsnError("expected a value, found '%s'" % t.text, t.loc)

    def named_or_referenced_value(self):
        t = self.advance()
        if self.at_sym(":"):            # a CHOICE value: alternative : value
            self.advance()
            return M.ChoiceValue(t.text, self.value(), t.loc)
        return M.ValueRef(t.text, None, t.loc)

    def defined_value(self):
        loc = self.tok.loc
        if self.at(L.TYPEREF):
            module = self.advance().text
            self.expect_sym(".")
            return M.ValueRef(self.expect(L.VALUEREF, "a value name").text, module, loc)
        return M.ValueRef(self.expect(L.VALUEREF, "a value name").text, None, loc)


Parser.BUILTIN_RULES = {
    "OCTET": Parser.octet_string_type,
    "OBJECT": Parser.object_identifier_type,
    "CHARACTER": Parser.character_string_type,
    "EMBEDDED": Parser.embedded_pdv_type,
    "INTEGER": Parser.integer_type,
    "BIT": Parser.bit_string_type,
    "ENUMERATED": Parser.enumerated_type,
    "SEQUENCE": Parser.sequence_type,
    "SET": Parser.set_type,
    "CHOICE": Parser.choice_type,
    "ANY": Parser.any_type,
    "INSTANCE": Parser.instance_of_type,
}


def parse_text(text, filename="<text>"):
    """Parse a module text into a list of Module nodes."""
    return Parser(L.tokenize(text, filename)).module_definitions()


def parse_file(path):
    with open(path, encoding="utf-8") as f:
        return parse_text(f.read(), path)


def sub_parser(braced):
    """A parser over the tokens of a BracedValue; its end is the closing brace."""
    end_loc = braced.end_loc or braced.loc
    return Parser(list(braced.tokens) + [L.Token(L.EOF, "", end_loc)])
