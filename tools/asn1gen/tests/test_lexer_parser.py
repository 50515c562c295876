"""Lexer and parser: the constructs the module texts use, and where errors point."""

import unittest

from asn1gen import lexer as L
from asn1gen import model as M
from asn1gen.errors import AsnError
from asn1gen.parser import parse_text
from asn1gen.tests.support import module_text


def parse_one(body, tagging="EXPLICIT"):
    return parse_text(module_text("M", body, tagging), "t.asn")[0]


def assignment(module, name):
    return next(a for a in module.assignments if a.name == name)


class LexerTest(unittest.TestCase):
    def kinds_and_texts(self, text):
        return [(t.kind, t.text) for t in L.tokenize(text, "x")[:-1]]

    def test_comments_end_at_double_hyphen_or_line_end(self):
        toks = self.kinds_and_texts("a -- c1 -- b -- c2\nc /* d /* nested */ e */ f")
        self.assertEqual([t for _, t in toks], ["a", "b", "c", "f"])

    def test_names_with_hyphens_and_the_comment_they_cannot_contain(self):
        toks = self.kinds_and_texts("id-ce-keyUsage Gost28147-89-IV x--comment\ny")
        self.assertEqual(toks, [(L.VALUEREF, "id-ce-keyUsage"), (L.TYPEREF, "Gost28147-89-IV"),
                                (L.VALUEREF, "x"), (L.VALUEREF, "y")])

    def test_literals_and_symbols(self):
        toks = self.kinds_and_texts("::= ... .. 1..5 '0101'B '0aF'H \"say \"\"hi\"\"\" &Type &id")
        self.assertEqual(toks, [
            (L.SYMBOL, "::="), (L.SYMBOL, "..."), (L.SYMBOL, ".."), (L.NUMBER, "1"),
            (L.SYMBOL, ".."), (L.NUMBER, "5"), (L.BSTRING, "0101"), (L.HSTRING, "0AF"),
            (L.CSTRING, 'say "hi"'), (L.FIELDREF, "&Type"), (L.FIELDREF, "&id")])

    def test_positions_count_lines_and_columns_from_one(self):
        toks = L.tokenize("A ::=\n  INTEGER", "f.asn")
        self.assertEqual([(t.loc.line, t.loc.column) for t in toks[:3]], [(1, 1), (1, 3), (2, 3)])

    def test_errors_name_file_line_and_column(self):
        cases = {"A ::= \"open": "f.asn:1:7: unterminated character string",
                 "A ::=\n /* x": "f.asn:2:2: unterminated /* comment",
                 "x ::= '012'B": "f.asn:1:7: malformed bit or hex string",
                 "A ::= #": "f.asn:1:7: unexpected character '#'"}
        for text, message in cases.items():
            with self.subTest(text=text):
                with self.assertRaises(AsnError) as cm:
                    L.tokenize(text, "f.asn")
                self.assertEqual(str(cm.exception), message)


class ModuleHeaderTest(unittest.TestCase):
    def test_header_tagging_exports_imports(self):
        text = """
        Mod { iso(1) 2 } DEFINITIONS IMPLICIT TAGS ::= BEGIN
        EXPORTS A, b;
        IMPORTS X, y FROM Other { 1 2 3 }
                Name{}, ub-name FROM Third third-oid
                Z FROM Fourth;
        A ::= INTEGER
        END
        Second DEFINITIONS ::= BEGIN END
        """
        first, second = parse_text(text, "h.asn")
        self.assertEqual((first.name, first.tag_default, first.exports), ("Mod", "IMPLICIT",
                                                                          ["A", "b"]))
        self.assertEqual([(i.module_name, [n for n, _ in i.symbols]) for i in first.imports],
                         [("Other", ["X", "y"]), ("Third", ["Name", "ub-name"]),
                          ("Fourth", ["Z"])])
        self.assertEqual((second.tag_default, second.exports), ("EXPLICIT", None))

    def test_lone_value_after_module_name_starts_next_import_when_followed_by_comma(self):
        text = module_text("M", "", imports="IMPORTS a FROM X b, c FROM Y d FROM Z;")
        imports = parse_text(text, "i.asn")[0].imports
        self.assertEqual([[n for n, _ in i.symbols] for i in imports], [["a"], ["b", "c"], ["d"]])


class TypeSyntaxTest(unittest.TestCase):
    def test_sequence_components_tags_optional_default_extension(self):
        m = parse_one("""
            T ::= SEQUENCE {
                version  [0] EXPLICIT Version DEFAULT v1,
                serial   INTEGER,
                uid      [1] IMPLICIT BIT STRING OPTIONAL,
                COMPONENTS OF Base,
                ...,
                added    [APPLICATION 5] BOOLEAN DEFAULT TRUE
            }""")
        seq = assignment(m, "T").type
        members = seq.members
        self.assertEqual([type(x).__name__ for x in members],
                         ["Component", "Component", "Component", "ComponentsOf",
                          "ExtensionMarker", "Component"])
        version, _, uid, comps_of, _, added = members
        self.assertEqual((version.type.tags[0].number, version.type.tags[0].mode), (0, "EXPLICIT"))
        self.assertIsInstance(version.default, M.ValueRef)
        self.assertEqual((uid.optional, uid.type.kind, uid.type.tags[0].mode),
                         (True, "BIT STRING", "IMPLICIT"))
        self.assertEqual(comps_of.type.ref_name, "Base")
        self.assertTrue(added.extension and seq.extensible)
        self.assertEqual(added.type.tags[0].tag_class, "APPLICATION")
        self.assertFalse(version.extension)

    def test_collections_constraints_and_named_items(self):
        m = parse_one("""
            A ::= SEQUENCE SIZE (1..MAX) OF INTEGER (0..255)
            B ::= SET (SIZE (2)) OF elem OCTET STRING
            C ::= BIT STRING { a(0), b(8) } (SIZE (1..16, ...))
            D ::= ENUMERATED { x, y(5), z, ..., w }
            E ::= INTEGER { v1(1) } (v1 | 3 | 10<..<20)
            F ::= PrintableString (SIZE (1..ub-name)) (FROM ("A".."Z"))
            """)
        a = assignment(m, "A").type
        self.assertEqual(a.kind, "SEQUENCE OF")
        size = a.constraints[0].root
        self.assertIsInstance(size, M.SizeConstraint)
        rng = size.constraint.root
        self.assertEqual((rng.lower.value, rng.upper.keyword), (1, "MAX"))
        self.assertIsInstance(a.element.constraints[0].root, M.ValueRange)
        b = assignment(m, "B").type
        self.assertEqual((b.kind, b.element_name, b.element.kind), ("SET OF", "elem",
                                                                    "OCTET STRING"))
        c = assignment(m, "C").type
        self.assertEqual([(n.name, n.value) for n in c.named_bits], [("a", 0), ("b", 8)])
        self.assertTrue(c.constraints[0].root.constraint.extensible)
        d = assignment(m, "D").type
        self.assertEqual(([i.name for i in d.items], [i.name for i in d.additions], d.extensible),
                         (["x", "y", "z"], ["w"], True))
        union = assignment(m, "E").type.constraints[0].root
        self.assertEqual(union.operator, "UNION")
        self.assertTrue(union.operands[2].lower_open and union.operands[2].upper_open)
        f = assignment(m, "F").type
        self.assertEqual(len(f.constraints), 2)
        self.assertIsInstance(f.constraints[1].root, M.PermittedAlphabet)

    def test_choice_any_instance_of_and_inner_subtyping(self):
        m = parse_one("""
            C ::= CHOICE { a [0] INTEGER, b SEQUENCE { x ANY DEFINED BY y }, ... }
            G ::= SEQUENCE { o [0] INSTANCE OF OTHER-NAME }
            H ::= SEQUENCE { p [0] INTEGER OPTIONAL, q [1] INTEGER OPTIONAL }
                  (WITH COMPONENTS { ..., p PRESENT } | WITH COMPONENTS { ..., q PRESENT })
            """)
        c = assignment(m, "C").type
        self.assertTrue(c.extensible)
        self.assertEqual(c.alternatives[1].type.members[0].type.defined_by, "y")
        g = assignment(m, "G").type
        self.assertIsInstance(g.members[0].type, M.InstanceOfType)
        h = assignment(m, "H").type.constraints[0].root
        self.assertEqual([op.components for op in h.operands],
                         [[("p", None, "PRESENT")], [("q", None, "PRESENT")]])

    def test_classes_objects_sets_and_table_constraints(self):
        m = parse_one("""
            EXTENSION ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &ExtnType }
                WITH SYNTAX { SYNTAX &ExtnType IDENTIFIED BY &id [CRITICAL &critical] }
            ext EXTENSION ::= { SYNTAX Foo IDENTIFIED BY id-ext }
            ExtensionSet EXTENSION ::= { ext | Other.ext2 | { SYNTAX Bar IDENTIFIED BY { 1 2 } }, ... }
            Extension ::= SEQUENCE {
                extnID EXTENSION.&id ({ExtensionSet}),
                extnValue OCTET STRING (CONTAINING EXTENSION.&ExtnType ({ExtensionSet}{@extnID}))
            }""")
        cls = assignment(m, "EXTENSION").object_class
        self.assertEqual([(f.name, f.kind, f.unique) for f in cls.fields],
                         [("&id", "value", True), ("&ExtnType", "type", False)])
        self.assertEqual(cls.syntax, [("word", "SYNTAX"), ("field", "&ExtnType"),
                                      ("word", "IDENTIFIED"), ("word", "BY"), ("field", "&id"),
                                      [("word", "CRITICAL"), ("field", "&critical")]])
        self.assertIsInstance(assignment(m, "ext"), M.GovernedAssignment)
        spec = assignment(m, "ExtensionSet").spec
        self.assertEqual([k for k, _ in spec.elements], ["object", "object", "inline"])
        self.assertEqual(spec.elements[1][1].module_name, "Other")
        self.assertTrue(spec.extensible)
        ext = assignment(m, "Extension").type
        table = ext.members[1].type.constraints[0].root.type.constraints[0].root
        self.assertEqual(table.at_refs, [["extnID"]])
        self.assertEqual(table.object_set.elements[0][1].name, "ExtensionSet")

    def test_parameterised_definitions_and_uses(self):
        m = parse_one("""
            DirectoryString { INTEGER : maxSize } ::= CHOICE {
                printable PrintableString (SIZE (1..maxSize)) }
            SIGNED { ToBeSigned } ::= SEQUENCE { tbs ToBeSigned, sig BIT STRING }
            Alg { ALGORITHM : IOSet } ::= SEQUENCE { a ALGORITHM.&id ({IOSet}) }
            T ::= SEQUENCE { n DirectoryString {ub-name}, s SIGNED { SEQUENCE { x INTEGER } },
                             g Alg {{ Algs }} }
            """)
        params = assignment(m, "DirectoryString").params
        self.assertEqual((params[0].name, params[0].governor.kind), ("maxSize", "INTEGER"))
        n, s, g = assignment(m, "T").type.members
        self.assertEqual(n.type.actual_params[0].name, "ub-name")
        self.assertEqual(s.type.actual_params[0].kind, "SEQUENCE")
        self.assertIsInstance(g.type.actual_params[0], M.ObjectSetSpec)

    def test_value_forms(self):
        m = parse_one("""
            a INTEGER ::= -5
            b BOOLEAN ::= TRUE
            c OBJECT IDENTIFIER ::= { iso(1) member-body(2) 840 }
            d BIT STRING ::= '1010'B
            e UTF8String ::= "text"
            f Alt ::= choice : 3
            """)
        values = {a.name: a.value for a in m.assignments}
        self.assertEqual(values["a"].value, -5)
        self.assertTrue(values["b"].value)
        self.assertEqual([t.text for t in values["c"].tokens][:4], ["iso", "(", "1", ")"])
        self.assertEqual((values["d"].text, values["e"].text), ("1010", "text"))
        self.assertEqual((values["f"].alternative, values["f"].value.value), ("choice", 3))


class ParseErrorTest(unittest.TestCase):
    """A malformed text is rejected with the place of the fault."""

    CASES = [
        ("M DEFINITIONS ::= BEGIN\nT ::= SEQUENCE { a INTEGER b INTEGER }\nEND",
         "e.asn:2:28: expected '}', found 'b'"),
        ("M DEFINITIONS ::= BEGIN\nT ::= SEQUENCE {\n  a [0 INTEGER }\nEND",
         "e.asn:3:8: expected ']', found 'INTEGER'"),
        ("M DEFINITIONS ::= BEGIN\nT ::= INTEGER (1..)\nEND",
         "e.asn:2:19: expected a value, found ')'"),
        ("M DEFINITIONS ::= BEGIN\nT ::= CHOICE { a INTEGER OPTIONAL }\nEND",
         "e.asn:2:16: a CHOICE alternative cannot be OPTIONAL or DEFAULT"),
        ("M DEFINITIONS ::= BEGIN\nT ::= SEQUENCE { a INTEGER }",
         "e.asn:2:29: expected END, found 'end of text'"),
        ("M DEFINITIONS ::= BEGIN\n  ::= INTEGER\nEND",
         "e.asn:2:3: expected an assignment, found '::='"),
        ("M DEFINITION ::= BEGIN END", "e.asn:1:3: expected DEFINITIONS, found 'DEFINITION'"),
        ("M DEFINITIONS ::= BEGIN\nX ::= CLASS { &id OBJECT IDENTIFIER } WITH SYNTAX { ID &id\n"
         "END", "e.asn:3:4: unterminated WITH SYNTAX, found 'end of text'"),
    ]

    def test_error_positions(self):
        for text, message in self.CASES:
            with self.subTest(message=message):
                with self.assertRaises(AsnError) as cm:
                    parse_text(text, "e.asn")
                self.assertEqual(str(cm.exception), message)


if __name__ == "__main__":
    unittest.main()
