"""The back end's decisions that the generated C++ depends on: which tags a place of use
writes around a type's coder, the order of declarations in a header, which decoders count
nesting, the names that must stay unique, and that output is the same on every run."""

import filecmp
import os
import tempfile
import unittest

from asn1gen.backend import generate as G
from asn1gen.backend import shapes as S
from asn1gen.backend.samples import Costs
from asn1gen.compiler import compile_directory
from asn1gen.errors import AsnError
from asn1gen.tests.support import MODULES_DIR, compile_one, compile_texts, module_text, type_named


def component_use(module, type_name, component):
    a = type_named(module, type_name)
    return S.Use(next(c for c in S.components(a.type) if c.name == component).type)


class PlacesOfUseTest(unittest.TestCase):
    def test_tags_a_place_adds_around_the_coder(self):
        m = compile_one("""
            S ::= SEQUENCE {
              plain    INTEGER,
              wrapped  [0] INTEGER,
              replaced [1] IMPLICIT OCTET STRING,
              named    [2] IMPLICIT Inner,
              choice   [3] C,
              both     [4] EXPLICIT [APPLICATION 5] IMPLICIT Inner }
            Inner ::= SEQUENCE { x INTEGER }
            C ::= CHOICE { i INTEGER, b BOOLEAN }
        """)
        cases = {
            "plain": ([], False),
            "wrapped": ([0xA0000000], False),
            "replaced": ([0x80000001], True),
            "named": ([0xA0000002], True),
            # A CHOICE has no tag of its own to replace: the tag wraps it.
            "choice": ([0xA0000003], False),
            "both": ([0xA0000004, 0x60000005], True),
        }
        for name, (words, implicit) in cases.items():
            use = component_use(m, "S", name)
            self.assertEqual([t.word() for t in use.levels], words, name)
            self.assertEqual(use.implicit, implicit, name)
        self.assertIsNone(component_use(m, "S", "plain").target)
        self.assertEqual(component_use(m, "S", "named").name, "Inner")

    def test_optional_components_are_told_by_their_first_tags(self):
        m = compile_one("""
            S ::= SEQUENCE { c C OPTIONAL, o [5] ANY OPTIONAL }
            C ::= CHOICE { i INTEGER, t [1] IMPLICIT BOOLEAN }
        """)
        self.assertEqual([t.word() & ~0x20000000 for t in component_use(m, "S", "c").first_tags()],
                         [0x00000002, 0x80000001])
        self.assertEqual([t.word() for t in component_use(m, "S", "o").first_tags()],
                         [0xA0000005])


class LayoutTest(unittest.TestCase):
    def test_members_held_by_value_are_declared_first(self):
        m = compile_one("""
            Outer ::= SEQUENCE { inner Inner, alias Alias, ptr P, list L }
            P ::= CHOICE { deep Deep, n INTEGER }
            Alias ::= Inner
            Inner ::= SEQUENCE { n INTEGER }
            Deep ::= SEQUENCE { back Outer }
            L ::= SEQUENCE OF Outer
        """)
        order = [a.generated_name for a in G.declaration_order(m)]
        for before, after in (("Inner", "Outer"), ("Alias", "Outer"), ("P", "Outer")):
            self.assertLess(order.index(before), order.index(after), order)
        # A CHOICE holds a structure through a pointer: Deep may come after P, and must, since
        # Deep holds Outer, which holds P.
        self.assertLess(order.index("P"), order.index("Deep"), order)

    def test_self_containing_types_count_nesting(self):
        m = compile_one("""
            Msg ::= SEQUENCE { body Body }
            Body ::= CHOICE { leaf INTEGER, nested [0] Msgs }
            Msgs ::= SEQUENCE OF Msg
            Other ::= SEQUENCE { x INTEGER, body Body }
        """)
        recursive = {a.generated_name for a in G.recursive_types([m])}
        self.assertEqual(recursive, {"Msg", "Body", "Msgs"})

    def test_samples_end_by_the_cheapest_alternative(self):
        m = compile_one("""
            T ::= CHOICE { deeper [0] T2, leaf INTEGER }
            T2 ::= SEQUENCE { t T }
        """)
        costs = Costs([m])
        self.assertEqual(costs.cheapest(type_named(m, "T")), 1)
        self.assertLess(costs.cost[type_named(m, "T2")], Costs.INF)


class OutputTest(unittest.TestCase):
    def test_names_clashing_across_modules_are_refused(self):
        a = module_text("A", "id-x OBJECT IDENTIFIER ::= { 1 2 }")
        b = module_text("B", "id-x OBJECT IDENTIFIER ::= { 1 3 }")
        modules = list(compile_texts(a, b).values())
        with tempfile.TemporaryDirectory() as out:
            with self.assertRaisesRegex(AsnError, "id_x"):
                G.generate(modules, out)

    def test_the_modules_generate_the_same_files_every_time(self):
        with tempfile.TemporaryDirectory() as first, tempfile.TemporaryDirectory() as second:
            G.generate(compile_directory(MODULES_DIR), first)
            G.generate(compile_directory(MODULES_DIR), second)
            names = sorted(os.listdir(first))
            self.assertEqual(len(names), 2 * 26)
            match, mismatch, errors = filecmp.cmpfiles(first, second, names, shallow=False)
            self.assertEqual((mismatch, errors), ([], []))


if __name__ == "__main__":
    unittest.main()
