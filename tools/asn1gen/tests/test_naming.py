"""Lifting and naming of inline types, and the order of a module's types."""

import unittest

from asn1gen import model as M
from asn1gen.errors import AsnErrors
from asn1gen.tests.support import (compile_one, compile_texts, component, module_text, names,
                                   type_named)

ATTRIBUTE_CLASS = """
    ATTRIBUTE ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type }
        WITH SYNTAX { WITH SYNTAX &Type ID &id }
    DirectoryString { INTEGER : maxSize } ::= CHOICE {
        printableString PrintableString (SIZE (1..maxSize)),
        utf8String UTF8String (SIZE (1..maxSize)) }
"""


class LiftingTest(unittest.TestCase):
    def test_which_component_types_get_a_name_of_their_own(self):
        m = compile_one(ATTRIBUTE_CLASS + """
            Info ::= SEQUENCE {
                version INTEGER { v1(1) },
                plainInt INTEGER (0..MAX),
                kind ENUMERATED { a, b },
                flags BIT STRING { x(0) },
                anyBits BIT STRING,
                ukm OCTET STRING (SIZE (8)),
                octets OCTET STRING,
                label PrintableString (SIZE (1..64)),
                key KeyId (SIZE (4)),
                name DirectoryString {32},
                inner SEQUENCE { x INTEGER },
                pick CHOICE { y BOOLEAN, z NULL } }
            KeyId ::= OCTET STRING
            """)
        # KeyId is held by value, so it comes before Info, at its component's turn
        self.assertEqual(names(m), ["Info_version", "Info_kind", "Info_flags", "Info_ukm",
                                    "KeyId", "Info_name", "Info_inner", "Info_pick", "Info"])
        info = type_named(m, "Info").type
        for kept in ("plainInt", "anyBits", "octets", "label", "key"):
            self.assertFalse(getattr(component(info, kept).type, "lifted", False), kept)

    def test_lists_are_shared_when_unconstrained_of_a_named_type(self):
        m = compile_one("""
            Cert ::= SEQUENCE { serial INTEGER }
            A ::= SEQUENCE {
                certs SEQUENCE OF Cert,
                again [1] SEQUENCE OF Cert,
                bounded SEQUENCE SIZE (1..MAX) OF Cert,
                numbers SEQUENCE OF INTEGER,
                attrs SET OF Cert,
                rows SEQUENCE OF SEQUENCE { a INTEGER } OPTIONAL }
            B ::= CHOICE { list [0] SEQUENCE OF Cert }
            """)
        self.assertEqual(names(m), ["Cert", "_SeqOfCert", "A_bounded", "A_numbers", "_SetOfCert",
                                    "A_rows_element", "_SeqOfA_rows_element", "A", "B"])
        a = type_named(m, "A").type
        certs, again = component(a, "certs").type, component(a, "again").type
        self.assertIs(certs.target, again.target)
        self.assertIs(component(type_named(m, "B").type, "list").type.target, certs.target)
        # the tag stays with the use: the shared list type is untagged
        self.assertEqual((certs.tags, [t.number for t in again.tags]), ([], [1]))
        self.assertEqual(certs.target.type.tags, [])

    def test_list_elements_and_nested_inline_types(self):
        m = compile_one("""
            Mappings ::= SEQUENCE SIZE (1..MAX) OF SEQUENCE { issuer OBJECT IDENTIFIER,
                                                         subject OBJECT IDENTIFIER }
            Notices ::= SEQUENCE OF CHOICE { a [0] INTEGER, b [1] SEQUENCE { c BOOLEAN } }
            Request ::= SEQUENCE {
                info SEQUENCE {
                    key SEQUENCE { algorithm OBJECT IDENTIFIER },
                    version INTEGER { v1(0) } },
                addresses SET SIZE (1..4) OF PrintableString }
            """)
        self.assertEqual(names(m), [
            "Mappings_element", "Mappings",
            "Notices_element_b", "Notices_element", "Notices",
            "Request_info_key", "Request_info_version", "Request_info", "Request_addresses",
            "Request"])
        lifted = type_named(m, "Request_info")
        self.assertTrue(lifted.lifted_from)
        self.assertEqual(lifted.module.name, "M")

    def test_types_carried_by_objects_are_named_after_object_and_field(self):
        m = compile_one(ATTRIBUTE_CLASS + """
            Name ::= SEQUENCE { x INTEGER }
            name ATTRIBUTE ::= { WITH SYNTAX DirectoryString {64} ID { 2 5 4 41 } }
            serial ATTRIBUTE ::= { WITH SYNTAX PrintableString (SIZE (1..64)) ID { 2 5 4 5 } }
            byName ATTRIBUTE ::= { WITH SYNTAX Name ID { 2 5 4 49 } }
            Attrs ATTRIBUTE ::= { name | { WITH SYNTAX OCTET STRING ID { 1 2 } } }
            """)
        self.assertEqual(names(m), ["Name", "_name_Type", "_serial_Type", "_Attrs_1_Type"])
        objects = {a.name: a.object for a in m.assignments if isinstance(a, M.ObjectAssignment)}
        self.assertIs(objects["byName"].carried["&Type"], m.symbols["Name"])
        self.assertEqual(objects["name"].carried["&Type"].generated_name, "_name_Type")
        self.assertIsInstance(objects["name"].carried["&Type"].type, M.ChoiceType)

    def test_generated_names_must_be_unique_across_modules(self):
        a = module_text("A", "Version ::= INTEGER")
        b = module_text("B", "Version ::= INTEGER\nT ::= SEQUENCE { x-y INTEGER { a(1) } }\n"
                             "T-x-y ::= BOOLEAN")
        with self.assertRaises(AsnErrors) as cm:
            compile_texts(a, b)
        self.assertEqual([e.message for e in cm.exception.errors], [
            "generated type name Version is already used by A.Version (m0.asn:3:1)",
            "generated type name T_x_y is already used by B.T_x_y (m1.asn:4:22)"])


class OrderTest(unittest.TestCase):
    def test_declaration_order_with_embedded_types_first(self):
        m = compile_one("""
            Outer ::= SEQUENCE { a Inner, b Later, c Listed, d Alias }
            Alias ::= Inner
            Chooser ::= CHOICE { s [0] Inner, n Number, p [1] Later }
            Inner ::= SEQUENCE { x INTEGER }
            Later ::= SEQUENCE { y INTEGER }
            Listed ::= SEQUENCE OF Later
            Number ::= INTEGER
            """)
        # Outer pulls what it holds by value (Inner, Later, Alias) but not the list;
        # Chooser pulls only its scalar alternative.
        self.assertEqual(names(m), ["Inner", "Later", "Alias", "Outer", "Number", "Chooser",
                                    "Listed"])

    def test_recursive_types_keep_declaration_order(self):
        m = compile_one("""
            Message ::= SEQUENCE { body Body }
            Body ::= CHOICE { nested [0] Nested, text [1] UTF8String }
            Nested ::= Message
            """)
        # Message pulls Body (held by value); Body holds Nested through a pointer
        self.assertEqual(names(m), ["Body", "Message", "Nested"])

    def test_objects_place_their_types_where_they_are_declared(self):
        m = compile_one(ATTRIBUTE_CLASS + """
            First ::= BOOLEAN
            title ATTRIBUTE ::= { WITH SYNTAX DirectoryString {64} ID { 2 5 4 12 } }
            Last ::= BOOLEAN
            """)
        self.assertEqual(names(m), ["First", "_title_Type", "Last"])


if __name__ == "__main__":
    unittest.main()
