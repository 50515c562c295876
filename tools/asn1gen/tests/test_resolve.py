"""Resolution across modules: imports, values, parameterised types, COMPONENTS OF,
information objects and object sets, table constraints, and the errors of each."""

import unittest

from asn1gen import model as M
from asn1gen.errors import AsnErrors
from asn1gen.tests.support import (compile_one, compile_texts, component, module_text,
                                   type_named)

CLASSES = """
    EXTENSION ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &ExtnType }
        WITH SYNTAX { SYNTAX &ExtnType IDENTIFIED BY &id }
    ALGORITHM-IDENTIFIER ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type OPTIONAL }
        WITH SYNTAX { [&Type] IDENTIFIED BY &id }
"""


class ErrorsMixin:
    def assert_errors(self, texts, expected):
        with self.assertRaises(AsnErrors) as cm:
            compile_texts(*texts)
        self.assertEqual([str(e) for e in cm.exception.errors], expected)


class ImportTest(ErrorsMixin, unittest.TestCase):
    def test_types_and_values_resolve_through_imports_and_re_exports(self):
        base = module_text("Base", """
            id-base OBJECT IDENTIFIER ::= { iso(1) identified-organization(3) 6 }
            Serial ::= INTEGER
            """)
        middle = module_text("Middle", "Local ::= Serial",
                             imports="IMPORTS Serial, id-base FROM Base;")
        top = module_text("Top", """
            id-top OBJECT IDENTIFIER ::= { id-base 1 7 }
            T ::= SEQUENCE { s Serial, l Local }
            """, imports="IMPORTS Serial, Local, id-base FROM Middle;")
        mods = compile_texts(base, middle, top)
        t = type_named(mods["Top"], "T").type
        self.assertIs(component(t, "s").type.target, mods["Base"].symbols["Serial"])
        self.assertIs(component(t, "l").type.target, mods["Middle"].symbols["Local"])
        self.assertEqual(mods["Top"].symbols["id-top"].evaluated.arcs, [1, 3, 6, 1, 7])

    def test_every_unresolved_name_is_reported_with_its_position(self):
        text = ("A DEFINITIONS ::= BEGIN\nIMPORTS X FROM Missing Y FROM B;\n"
                "T ::= SEQUENCE {\n  a Undefined,\n  b Y }\nEND\n")
        b = "B DEFINITIONS ::= BEGIN\nZ ::= INTEGER\nEND\n"
        self.assert_errors((text, b), [
            "m0.asn:2:16: module Missing is not among the modules given",
            "m0.asn:2:24: 'Y' is not defined in module B"])

    def test_reference_and_definition_errors(self):
        text = ("M DEFINITIONS ::= BEGIN\nT ::= SEQUENCE {\n  a Undefined,\n  b Cls,\n"
                "  a INTEGER }\nCls ::= CLASS { &id INTEGER }\nP { X } ::= SEQUENCE { x X }\n"
                "U ::= P\nV ::= INTEGER\nW ::= V { INTEGER }\nT ::= BOOLEAN\nEND\n")
        self.assert_errors((text,), [
            "m0.asn:11:1: 'T' is already defined at m0.asn:2:1"])
        text = text.replace("T ::= BOOLEAN\n", "")
        self.assert_errors((text,), [
            "m0.asn:3:5: undefined type 'Undefined'",
            "m0.asn:4:5: 'Cls' is not a type",
            "m0.asn:5:3: component 'a' appears twice (first at m0.asn:3:3)",
            "m0.asn:8:7: 'P' needs 1 parameter(s)",
            "m0.asn:10:7: 'V' takes no parameters"])


class ValueTest(ErrorsMixin, unittest.TestCase):
    def test_object_identifiers_resolve_to_arcs(self):
        m = compile_one("""
            id-pkix OBJECT IDENTIFIER ::= { iso(1) identified-organization(3) dod(6)
                internet(1) security(5) mechanisms(5) pkix(7) }
            id-pe OBJECT IDENTIFIER ::= { id-pkix 1 }
            id-alias OBJECT IDENTIFIER ::= id-pe
            id-named OBJECT IDENTIFIER ::= { iso member-body us(840) arc }
            id-ccitt OBJECT IDENTIFIER ::= { joint-iso-itu-t ds(5) 29 19 }
            arc INTEGER ::= 113549
            """)
        arcs = {n: m.symbols[n].evaluated.arcs for n in ("id-pe", "id-alias", "id-named",
                                                         "id-ccitt")}
        self.assertEqual(arcs, {"id-pe": [1, 3, 6, 1, 5, 5, 7, 1],
                                "id-alias": [1, 3, 6, 1, 5, 5, 7, 1],
                                "id-named": [1, 2, 840, 113549], "id-ccitt": [2, 5, 29, 19]})

    def test_object_identifier_errors(self):
        text = ("M DEFINITIONS ::= BEGIN\na OBJECT IDENTIFIER ::= { b 1 }\n"
                "b OBJECT IDENTIFIER ::= { a 2 }\nc OBJECT IDENTIFIER ::= { 1 nowhere 3 }\n"
                "d OBJECT IDENTIFIER ::= { 1 \"x\" }\nEND\n")
        with self.assertRaises(AsnErrors) as cm:
            compile_texts(text)
        messages = [str(e) for e in cm.exception.errors]
        self.assertIn("m0.asn:2:1: value 'a' is defined in terms of itself", messages)
        self.assertEqual(len(messages), 3)       # the cycle is reported once
        self.assertIn("m0.asn:4:29: undefined name 'nowhere' in an object identifier", messages)
        self.assertIn("m0.asn:5:29: unexpected 'x' in an object identifier", messages)

    def test_named_numbers_defaults_and_constraint_bounds_become_numbers(self):
        m = compile_one("""
            ub-name INTEGER ::= 32768
            Version ::= INTEGER { v1(0), v2(1), v3(ub-v3) }
            ub-v3 INTEGER ::= 2
            E ::= ENUMERATED { a, b(5), c, d(1) }
            T ::= SEQUENCE {
                version [ub-tag] Version DEFAULT v2,
                name PrintableString (SIZE (1..ub-name)),
                flags BIT STRING { x(0), y(3) } DEFAULT { y } }
            ub-tag INTEGER ::= 4
            """)
        version_type = m.symbols["Version"].type
        self.assertEqual([n.value for n in version_type.named_numbers], [0, 1, 2])
        self.assertEqual([(i.name, i.value) for i in m.symbols["E"].type.items],
                         [("a", 0), ("b", 5), ("c", 2), ("d", 1)])
        t = m.symbols["T"].type
        version = component(t, "version")
        self.assertEqual((version.default_value.value, version.type.tags[0].number), (1, 4))
        size = component(t, "name").type.constraints[0].root.constraint.root
        self.assertEqual((size.lower_value, size.upper_value), (1, 32768))
        self.assertEqual(component(t, "flags").default_value.names, ["y"])

    def test_duplicate_enumeration_numbers_are_rejected(self):
        self.assert_errors((module_text("M", "E ::= ENUMERATED { a(1), b(1) }"),),
                           ["m0.asn:3:26: enumeration number 1 is used twice"])


class ParameterisedTypeTest(unittest.TestCase):
    def test_each_use_is_an_instance_with_its_actual_parameters(self):
        lib = module_text("Lib", """
            DirectoryString { INTEGER : maxSize } ::= CHOICE {
                printableString PrintableString (SIZE (1..maxSize)),
                utf8String UTF8String (SIZE (1..maxSize)) }
            SIGNED { ToBeSigned } ::= SEQUENCE {
                toBeSigned ToBeSigned, algorithm OBJECT IDENTIFIER, signature BIT STRING }
            """)
        user = module_text("User", """
            ub-name INTEGER ::= 64
            Name ::= SEQUENCE { given DirectoryString {ub-name}, family [0] DirectoryString {8} }
            Signed ::= SIGNED { SEQUENCE { serial INTEGER } }
            """, imports="IMPORTS DirectoryString{}, SIGNED{} FROM Lib;")
        mods = compile_texts(lib, user)
        name = mods["User"].symbols["Name"].type
        given, family = name.components
        self.assertIsInstance(given.type.target.type, M.ChoiceType)
        uppers = [c.type.constraints[0].root.constraint.root.upper_value
                  for c in (given.type.target.type.alternatives[0],
                            family.type.target.type.alternatives[0])]
        self.assertEqual(uppers, [64, 8])     # each instance has its own bound
        self.assertEqual(family.type.tags[0].number, 0)
        signed = mods["User"].symbols["Signed"].type
        self.assertEqual([c.name for c in signed.components], ["toBeSigned", "algorithm",
                                                               "signature"])
        self.assertIsInstance(signed.components[0].type.target.type, M.SequenceType)


class ComponentsOfTest(unittest.TestCase):
    def test_components_of_copies_root_components_in_place(self):
        m = compile_one("""
            Base ::= SEQUENCE { a INTEGER, b [1] SEQUENCE { x BOOLEAN } OPTIONAL, ..., z NULL }
            T ::= SEQUENCE { first BOOLEAN, COMPONENTS OF Base, last OCTET STRING }
            """)
        t = m.symbols["T"].type
        self.assertEqual([c.name for c in t.components], ["first", "a", "b", "last"])
        self.assertIsNot(component(t, "b"), component(m.symbols["Base"].type, "b"))
        # the inline SEQUENCE of an included component is named after the includer
        self.assertIn("T_b", [a.generated_name for a in m.types])


class ObjectTest(ErrorsMixin, unittest.TestCase):
    def test_objects_follow_their_class_syntax_with_optional_groups(self):
        m = compile_one(CLASSES + """
            id-a OBJECT IDENTIFIER ::= { 1 2 3 }
            Params ::= SEQUENCE { x INTEGER }
            withParams ALGORITHM-IDENTIFIER ::= { Params IDENTIFIED BY id-a }
            noParams ALGORITHM-IDENTIFIER ::= { IDENTIFIED BY { 1 2 4 } }
            ext EXTENSION ::= { SYNTAX Params IDENTIFIED BY id-a }
            PLAIN ::= CLASS { &id OBJECT IDENTIFIER, &Type }
            defaultSyntax PLAIN ::= { &id id-a, &Type Params }
            typeId TYPE-IDENTIFIER ::= { Params IDENTIFIED BY { 1 5 } }
            Algs ALGORITHM-IDENTIFIER ::= { withParams | noParams, ...,
                { Params IDENTIFIED BY { 1 9 } } | { IDENTIFIED BY { 1 10 } } }
            More ALGORITHM-IDENTIFIER ::= { Algs | withParams }
            """)
        objs = {a.name: a.object for a in m.assignments if isinstance(a, M.ObjectAssignment)}
        self.assertEqual(objs["withParams"].settings["&id"].arcs, [1, 2, 3])
        self.assertIs(objs["withParams"].carried["&Type"], m.symbols["Params"])
        self.assertEqual(set(objs["noParams"].settings), {"&id"})
        self.assertEqual(objs["defaultSyntax"].settings["&id"].arcs, [1, 2, 3])
        self.assertIs(objs["typeId"].carried["&Type"], m.symbols["Params"])
        algs = m.symbols["Algs"].spec.objects
        self.assertEqual([o.name for o in algs], ["withParams", "noParams", "Algs_1", "Algs_2"])
        self.assertEqual(algs[3].settings["&id"].arcs, [1, 10])
        more = m.symbols["More"].spec.objects
        self.assertEqual([o.name for o in more], ["withParams", "noParams", "Algs_1", "Algs_2",
                                                  "withParams"])

    def test_object_errors(self):
        body = CLASSES.replace("    ", "") + (
            "bad1 EXTENSION ::= { SYNTAX INTEGER }\n"
            "bad2 EXTENSION ::= { SYNTAX INTEGER IDENTIFIED WITH { 1 2 } }\n"
            "S EXTENSION ::= { bad1 | nothing }\n")
        with self.assertRaises(AsnErrors) as cm:
            compile_texts(module_text("M", body))
        messages = [str(e) for e in cm.exception.errors]
        self.assertEqual(messages, [
            "m0.asn:8:37: expected IDENTIFIED, found 'end of text'",
            "m0.asn:9:48: expected BY, found 'WITH'",
            "m0.asn:10:26: 'nothing' is not an information object"])
        # class fields are resolved with the types, before any object is read
        self.assert_errors((module_text("M", "T ::= SEQUENCE { a NOCLASS.&id }"),),
                           ["m0.asn:3:20: undefined information object class 'NOCLASS'"])


class TableConstraintTest(ErrorsMixin, unittest.TestCase):
    BODY = CLASSES + """
        ATTRIBUTE ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type }
            WITH SYNTAX { WITH SYNTAX &Type ID &id }
        Exts EXTENSION ::= { ... }
        Attrs ATTRIBUTE ::= { ... }
        Extension ::= SEQUENCE {
            extnID EXTENSION.&id ({Exts}),
            critical BOOLEAN DEFAULT FALSE,
            extnValue OCTET STRING (CONTAINING EXTENSION.&ExtnType ({Exts}{@extnID})) }
        Attribute ::= SEQUENCE {
            type ATTRIBUTE.&id ({Attrs}),
            values SET SIZE (1..MAX) OF ATTRIBUTE.&Type ({Attrs}{@type}) }
        Plain ::= SEQUENCE { id EXTENSION.&id ({Exts}), v EXTENSION.&ExtnType ({Exts}) }
        """

    def test_table_constrained_components_are_linked_to_their_key(self):
        m = compile_one(self.BODY)
        ext = m.symbols["Extension"]
        link = component(ext.type, "extnValue").table
        self.assertEqual((link.set.name, link.key_path, link.field_name),
                         ("Exts", ["extnID"], "&ExtnType"))
        attr = m.symbols["Attribute"]
        self.assertEqual(component(attr.type, "values").table.set.name, "Attrs")
        self.assertTrue(ext.table_constrained and attr.table_constrained)
        self.assertFalse(m.symbols["Plain"].table_constrained)   # no @-reference

    def test_at_reference_must_name_a_component(self):
        body = self.BODY.replace("{@type}", "{@kind}")
        with self.assertRaises(AsnErrors) as cm:
            compile_one(body)
        self.assertEqual([e.message for e in cm.exception.errors],
                         ["@kind does not name a component of Attribute"])


if __name__ == "__main__":
    unittest.main()
