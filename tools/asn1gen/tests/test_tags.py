"""Effective tags under each tagging default, and the ambiguity checks."""

import unittest

from asn1gen.errors import AsnErrors
from asn1gen.tests.support import compile_one, compile_texts, component, module_text, tag_words

BODY = """
    Choice ::= CHOICE { a [0] INTEGER, b [1] BOOLEAN }
    T ::= SEQUENCE {
        plain      [0] INTEGER,
        implicitly [1] IMPLICIT INTEGER,
        explicitly [2] EXPLICIT INTEGER,
        choice     [3] Choice,
        forced     [4] IMPLICIT Choice,
        open       [5] ANY,
        seq        [6] SEQUENCE { x INTEGER },
        app        [APPLICATION 7] OCTET STRING,
        untagged   UTF8String }
"""


def words(module, name):
    t = module.symbols["T"].type
    return tag_words(component(t, name).type)


class TaggingDefaultTest(unittest.TestCase):
    def test_explicit_module(self):
        m = compile_one(BODY, "EXPLICIT")
        self.assertEqual(words(m, "plain"), [0xA0000000, 0x02])
        self.assertEqual(words(m, "implicitly"), [0x80000001])
        self.assertEqual(words(m, "app"), [0x60000007, 0x04])

    def test_implicit_module(self):
        m = compile_one(BODY, "IMPLICIT")
        expected = {
            "plain": [0x80000000], "implicitly": [0x80000001],
            "explicitly": [0xA0000002, 0x02],
            # a CHOICE or open type has no tag to replace: the tag wraps it
            "choice": [0xA0000003], "forced": [0xA0000004], "open": [0xA0000005],
            # an implicit tag over a constructed type keeps the constructed bit
            "seq": [0xA0000006], "app": [0x40000007], "untagged": [0x0C]}
        for name, tags in expected.items():
            with self.subTest(component=name):
                self.assertEqual(words(m, name), tags)
        forced = component(m.symbols["T"].type, "forced").type
        self.assertTrue(forced.tags[0].forced_explicit)

    def test_automatic_module_tags_only_untagged_lists(self):
        m = compile_one("""
            A ::= SEQUENCE { x INTEGER, y CHOICE { p BOOLEAN, q NULL }, z OCTET STRING OPTIONAL }
            B ::= SEQUENCE { x INTEGER, y [5] BOOLEAN }
            C ::= CHOICE { p INTEGER, q BOOLEAN }
            """, "AUTOMATIC")
        a = m.symbols["A"].type
        self.assertEqual([tag_words(c.type) for c in a.components],
                         [[0x80000000], [0xA0000001], [0x80000002]])
        inner = component(a, "y").type.target.type
        self.assertEqual([tag_words(c.type) for c in inner.alternatives], [[0x80000000],
                                                                         [0x80000001]])
        b = m.symbols["B"].type       # a tag written anywhere switches automatic tagging off
        self.assertEqual([tag_words(c.type) for c in b.components], [[0x02], [0x80000005]])
        c = m.symbols["C"].type
        self.assertEqual([tag_words(x.type) for x in c.alternatives], [[0x80000000],
                                                                      [0x80000001]])

    def test_tags_follow_references_and_their_own_module_default(self):
        lib = module_text("Lib", """
            Wrapped ::= [APPLICATION 1] CHOICE { a INTEGER }
            Inner ::= [2] OCTET STRING
            """, "IMPLICIT")
        user = module_text("User", """
            T ::= SEQUENCE { w [0] Wrapped, i [1] Inner, j Inner }
            """, "EXPLICIT", "IMPORTS Wrapped, Inner FROM Lib;")
        mods = compile_texts(lib, user)
        # Lib's [2] is implicit (its module's default), User's tags are explicit
        self.assertEqual(tag_words(mods["Lib"].symbols["Inner"].type), [0x80000002])
        self.assertEqual(tag_words(mods["Lib"].symbols["Wrapped"].type), [0x60000001])
        t = mods["User"].symbols["T"].type
        self.assertEqual([tag_words(c.type) for c in t.components],
                         [[0xA0000000, 0x60000001], [0xA0000001, 0x80000002], [0x80000002]])


class AmbiguityTest(unittest.TestCase):
    def assert_errors(self, body, messages, tagging="IMPLICIT"):
        with self.assertRaises(AsnErrors) as cm:
            compile_one(body, tagging)
        self.assertEqual([e.message for e in cm.exception.errors], messages)

    def test_choice_and_set_need_distinct_tags(self):
        self.assert_errors("""
            Inner ::= CHOICE { s IA5String, t [3] INTEGER }
            C ::= CHOICE { a [0] INTEGER, b [0] BOOLEAN, c IA5String, d Inner }
            S ::= SET { x INTEGER, y INTEGER OPTIONAL }
            """, ["alternatives 'a' and 'b' of C share the tag [0]",
                  "alternatives 'c' and 'd' of C share the tag [UNIVERSAL 22]",
                  "components 'x' and 'y' of S share the tag [UNIVERSAL 2]"])

    def test_optional_components_must_be_told_apart_from_what_follows(self):
        self.assert_errors("""
            A ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER }
            B ::= SEQUENCE { a [0] INTEGER OPTIONAL, b BOOLEAN DEFAULT TRUE, c [0] INTEGER }
            C ::= SEQUENCE { a [0] INTEGER OPTIONAL, b BOOLEAN, c [0] INTEGER }
            """, ["optional component 'a' of A cannot be told apart from 'b' (tag [UNIVERSAL 2])",
                  "optional component 'a' of B cannot be told apart from 'c' (tag [0])"])


if __name__ == "__main__":
    unittest.main()
