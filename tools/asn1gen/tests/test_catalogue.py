"""The catalogue as a test: the compiler's view of the 26 module texts must yield
exactly the catalogue's types, per module, in order; the object sets with their
members; and the table-constrained types. Name and membership failures are kept
apart from order differences. The worked examples are checked on the same model."""

import os
import tempfile
import time
import unittest

from asn1gen.catalogue import compare, read_catalogue
from asn1gen.compiler import compile_directory
from asn1gen.dump import dump_type
from asn1gen.tests.support import (CATALOGUE, MODULES_DIR, compile_texts, component,
                                   module_text, tag_words)


KNOWN_ORDER = os.path.join(os.path.dirname(CATALOGUE), "order-known.txt")


def read_known_order_differences():
    with open(KNOWN_ORDER, encoding="utf-8") as f:
        return [line.strip() for line in f if line.strip() and not line.startswith("#")]


class CatalogueDataTest(unittest.TestCase):
    def test_data_file_holds_the_whole_catalogue(self):
        cat = read_catalogue(CATALOGUE)
        types = [t for names in cat.modules.values() for t in names]
        self.assertEqual((len(cat.modules), len(types), len(set(types))), (26, 534, 534))
        self.assertEqual(len(cat.object_sets), 13)
        self.assertEqual(len(cat.object_sets["ExtensionSet"][1]), 33)
        self.assertEqual(cat.object_sets["SupportedPolicyQualifiers"], (None, []))
        self.assertEqual(len(cat.table_constrained), 10)

    def test_a_lost_line_is_caught_by_the_header_count(self):
        with tempfile.NamedTemporaryFile("w", suffix=".txt", delete=False) as f:
            f.write("module A 3\n    X\n    Y\n")
        self.addCleanup(os.unlink, f.name)
        with self.assertRaisesRegex(ValueError, "module A lists 2 entries, its header says 3"):
            read_catalogue(f.name)


class ComparisonTest(unittest.TestCase):
    """The comparison itself must notice each kind of difference."""

    def setUp(self):
        body = """
            CLS ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type } WITH SYNTAX { &Type ID &id }
            a CLS ::= { A ID { 1 1 } }
            b CLS ::= { B ID { 1 2 } }
            Set CLS ::= { a | b }
            A ::= INTEGER
            B ::= BOOLEAN
            C ::= SEQUENCE { id CLS.&id ({Set}), v CLS.&Type ({Set}{@id}) }
            D ::= NULL
            """
        self.modules = list(compile_texts(module_text("M", body)).values())
        self.cat = read_catalogue(CATALOGUE)
        self.cat.modules = {"M": ["A", "B", "C", "D"]}
        self.cat.object_sets = {"Set": ("CLS", ["a", "b"])}
        self.cat.table_constrained = ["C"]

    def test_identical_model_passes(self):
        report = compare(self.cat, self.modules)
        self.assertTrue(report.names_ok and report.order_ok, report.text())
        self.assertEqual(report.counts, {"expected": 4, "actual": 4, "matched": 4})

    def test_every_kind_of_difference_is_listed(self):
        self.cat.modules = {"M": ["B", "A", "C", "Missing"], "Gone": ["X"]}
        self.cat.object_sets = {"Set": ("OTHER", ["b", "a", "c"]), "Absent": (None, [])}
        self.cat.table_constrained = ["A"]
        report = compare(self.cat, self.modules)
        self.assertEqual(report.failures, [
            "M: missing type Missing", "M: extra type D", "module Gone is missing (1 types expected)",
            "object set Set: class CLS, expected OTHER", "object set Set: missing c",
            "object set Absent is missing",
            "table-constrained type A is not table-constrained in the model",
            "extra table-constrained type C"])
        self.assertEqual(report.order, ["M: A is at position 1, expected 2"])


class ModuleCatalogueTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        start = time.time()
        cls.modules = compile_directory(MODULES_DIR)
        cls.seconds = time.time() - start
        cls.report = compare(read_catalogue(CATALOGUE), cls.modules)
        cls.failures = cls.report.failures

    def test_types_per_module(self):
        mine = [f for f in self.failures if "type " in f and "table-constrained" not in f
                or "module" in f]
        self.assertEqual(mine, [], "\n" + self.report.text())
        self.assertEqual(self.report.counts["actual"], 534)

    def test_type_order(self):
        found = {line.split(" is at position")[0]: line for line in self.report.order}
        known = read_known_order_differences()
        new = [found[k] for k in found if k not in known]
        gone = [k for k in known if k not in found]
        self.assertEqual((new, gone), ([], []), "\n" + "\n".join(self.report.order))

    def test_object_sets(self):
        mine = [f for f in self.failures if f.startswith(("object set", "extra object set"))]
        self.assertEqual(mine, [])

    def test_table_constrained_types(self):
        mine = [f for f in self.failures if "table-constrained" in f]
        self.assertEqual(mine, [])

    def test_compiles_within_seconds(self):
        self.assertLess(self.seconds, 10.0)


class WorkedDumpsTest(unittest.TestCase):
    """The types a reviewer checks first, against the published definitions."""

    @classmethod
    def setUpClass(cls):
        modules = compile_directory(MODULES_DIR)
        cls.types = {a.generated_name: a for m in modules for a in m.types}

    def seq(self, name):
        return self.types[name].type

    def layout(self, name):
        """(component, wire tags, presence bit) of a SEQUENCE or SET."""
        return [(c.name, tag_words(c.type), c.presence_bit) for c in self.seq(name).components]

    def test_tbs_certificate(self):
        self.assertEqual(self.layout("TBSCertificate"), [
            ("version", [0xA0000000, 0x02], 0), ("serialNumber", [0x02], None),
            ("signature", [0x20000010], None), ("issuer", [], None),
            ("validity", [0x20000010], None), ("subject", [], None),
            ("subjectPublicKeyInfo", [0x20000010], None),
            ("issuerUniqueID", [0x80000001], 1), ("subjectUniqueID", [0x80000002], 2),
            ("extensions", [0xA0000003, 0x20000010], 3)])
        t = self.seq("TBSCertificate")
        self.assertEqual(component(t, "serialNumber").type.repr.ctype, "const char*")
        self.assertIn("bit 3 extensionsPresent", dump_type(self.types["TBSCertificate"]))

    def test_extension(self):
        self.assertEqual(self.layout("Extension"), [
            ("extnID", [0x06], None), ("critical", [0x01], None), ("extnValue", [0x04], None)])
        link = component(self.seq("Extension"), "extnValue").table
        self.assertEqual((link.set.name, link.key_path), ("ExtensionSet", ["extnID"]))

    def test_general_name(self):
        t = self.seq("GeneralName")
        self.assertEqual([(a.name, tag_words(a.type)[0]) for a in t.alternatives], [
            ("otherName", 0xA0000000), ("rfc822Name", 0x80000001), ("dNSName", 0x80000002),
            ("x400Address", 0xA0000003), ("directoryName", 0xA0000004),
            ("ediPartyName", 0xA0000005), ("uniformResourceIdentifier", 0x80000006),
            ("iPAddress", 0x80000007), ("registeredID", 0x80000008)])
        self.assertEqual(component(t, "otherName").type.target.generated_name,
                         "GeneralName_otherName")

    def test_crl_reason_and_key_usage(self):
        reason = self.types["CRLReason"]
        self.assertEqual([(i.name, i.value) for i in reason.type.items][6:],
                         [("certificateHold", 6), ("removeFromCRL", 8),
                          ("privilegeWithdrawn", 9), ("aACompromise", 10)])
        self.assertEqual(reason.repr.ctype, "ASN1UINT")
        self.assertEqual(self.types["KeyUsage"].repr.detail, "9 bits, 2 bytes")

    def test_unformatted_postal_address(self):
        self.assertEqual(self.layout("UnformattedPostalAddress"), [
            ("printable-address", [0x20000010], 0), ("teletex-string", [0x14], 1)])

    def test_signed_data(self):
        self.assertEqual(self.layout("SignedData"), [
            ("version", [0x02], None), ("digestAlgorithms", [0x20000011], None),
            ("encapContentInfo", [0x20000010], None), ("certificates", [0xA0000000], 0),
            ("crls", [0xA0000001], 1), ("signerInfos", [0x20000011], None)])

    def test_pki_message(self):
        self.assertEqual(self.layout("PKIMessage"), [
            ("header", [0x20000010], None), ("body", [], None),
            ("protection", [0xA0000000, 0x03], 0),
            ("extraCerts", [0xA0000001, 0x20000010], 1)])
        extra = component(self.seq("PKIMessage"), "extraCerts").type
        self.assertEqual(extra.target.generated_name, "PKIMessage_extraCerts")

    def test_tst_info(self):
        self.assertEqual(self.layout("TSTInfo"), [
            ("version", [0x02], None), ("policy", [0x06], None),
            ("messageImprint", [0x20000010], None), ("serialNumber", [0x02], None),
            ("genTime", [0x18], None), ("accuracy", [0x20000010], 0),
            ("ordering", [0x01], None), ("nonce", [0x02], 1), ("tsa", [0xA0000000], 2),
            ("extensions", [0xA0000001], 3)])
        version = component(self.seq("TSTInfo"), "version").type
        self.assertEqual(version.target.generated_name, "TSTInfo_version")


if __name__ == "__main__":
    unittest.main()
