"""The published modules as a robustness check, and the worked examples checked
against them.

Every published module text parses, except five whose published text is itself
malformed; those are rejected at the very spot of the fault and parse once it is
corrected. The PKIX 1988 and GOST modules form a closed set that also resolves, so
the model of the worked examples can be checked against their definitions.
"""

import os
import unittest

from asn1gen.compiler import compile_modules
from asn1gen.errors import AsnError
from asn1gen.parser import parse_text
from asn1gen.tests.support import REFERENCE_DIR, component, tag_words

# file -> (error as reported, text to replace, replacement that corrects the fault)
DEFECTS = {
    "ETS-ElectronicSignatureFormats-97Syntax.asn": (
        "141:1: unterminated character string",
        '"SignaturePolicy CHOICE {\n         SignaturePolicyId          SignaturePolicyId,\n'
        "         SignaturePolicyImplied     SignaturePolicyImplied",
        "SignaturePolicy ::= CHOICE {\n signaturePolicyId SignaturePolicyId,\n"
        " signaturePolicyImplied SignaturePolicyImplied"),
    "PKIXAttributeCertificate.asn": (
        "58:14: expected '}', found 'holder'",
        "AttCertVersion  -- version is v2,", "AttCertVersion, -- version is v2"),
    "PKIXCMP-rfc2510.asn": (
        "16:48: expected a name to import or export, found '}'",
        "id-pkix1-explicit-88(1)}}", "id-pkix1-explicit-88(1)}"),
    "PKIXCRMF-rfc2511.asn": (
        "5:1: expected DEFINITIONS, found 'CRMF'", "\nCRMF DEFINITIONS", "\nDEFINITIONS"),
    "PKIXTSP.asn": (
        "72:17: expected '(', found ','",
        "       requested, is present.", "    -- requested, is present."),
}
# Further faults behind the first, each corrected the same way.
MORE_FIXES = {
    "ETS-ElectronicSignatureFormats-97Syntax.asn": [("\n- - Certificate", "\n-- Certificate"),
                                                    ("PolicyInformation.\n", "PolicyInformation\n"),
                                                    ("Work in Progress TimeStampToken",
                                                     "Work in Progress\n TimeStampToken"),
                                                    ("id-mod-tsp(13)}\n", "id-mod-tsp(13)};\n")],
    "PKIXCMP-rfc2510.asn": [("id-mod-crmf(5)}}", "id-mod-crmf(5)}"),
                            ("   --  Locally defined OIDs  --", ";  --  Locally defined OIDs  --")],
    "PKIXTSP.asn": [("       with modifications, is present.",
                     "    -- with modifications, is present."),
                    ("has occurred   }", "has occurred -- }"),
                    ("addInfoNotAvailable (17)", "addInfoNotAvailable (17),"),
                    ("due to system failure  }", "due to system failure -- }")],
}
CLOSED_SET = ["PKIX1Explicit88.asn", "PKIX1Implicit88.asn",
              "Cryptographic-Gost-Useful-Definitions.asn", "Gost28147-89-EncryptionSyntax.asn",
              "Gost28147-89-ParamSetSyntax.asn", "GostR3411-94-DigestSyntax.asn",
              "GostR3411-94-ParamSetSyntax.asn", "GostR3410-94-PKISyntax.asn",
              "GostR3410-94-ParamSetSyntax.asn", "GostR3410-2001-PKISyntax.asn",
              "GostR3410-2001-ParamSetSyntax.asn", "GostR3410-EncryptionSyntax.asn",
              "GostR3410-94-SignatureSyntax.asn", "GostR3410-2001-SignatureSyntax.asn"]


def read(name):
    with open(os.path.join(REFERENCE_DIR, name), encoding="utf-8") as f:
        return f.read()


@unittest.skipUnless(os.path.isdir(REFERENCE_DIR), "published reference modules not present")
class PublishedTextTest(unittest.TestCase):
    def test_every_published_module_parses_or_fails_at_its_known_defect(self):
        files = sorted(f for f in os.listdir(REFERENCE_DIR) if f.endswith(".asn"))
        self.assertEqual(len(files), 38)
        for name in files:
            with self.subTest(file=name):
                text = read(name)
                if name not in DEFECTS:
                    self.assertTrue(parse_text(text, name))
                    continue
                message, wrong, right = DEFECTS[name]
                with self.assertRaises(AsnError) as cm:
                    parse_text(text, name)
                self.assertEqual(str(cm.exception), "%s:%s" % (name, message))
                self.assertIn(wrong, text)
                text = text.replace(wrong, right)
                for before, after in MORE_FIXES.get(name, []):
                    text = text.replace(before, after)
                self.assertTrue(parse_text(text, name))


@unittest.skipUnless(os.path.isdir(REFERENCE_DIR), "published reference modules not present")
class WorkedExamplesTest(unittest.TestCase):
    """The examples of the generated layer, as the published PKIX 1988 modules give them."""

    @classmethod
    def setUpClass(cls):
        parsed = []
        for name in CLOSED_SET:
            parsed.extend(parse_text(read(name), name))
        cls.modules = {m.name: m for m in compile_modules(parsed)}

    def typ(self, module, name):
        return self.modules[module].symbols[name]

    def test_tbs_certificate(self):
        t = self.typ("PKIX1Explicit88", "TBSCertificate").type
        self.assertEqual([c.name for c in t.components], [
            "version", "serialNumber", "signature", "issuer", "validity", "subject",
            "subjectPublicKeyInfo", "issuerUniqueID", "subjectUniqueID", "extensions"])
        bits = {c.name: c.presence_bit for c in t.components if c.presence_bit is not None}
        self.assertEqual(bits, {"version": 0, "issuerUniqueID": 1, "subjectUniqueID": 2,
                                "extensions": 3})
        outer_tags = {c.name: tag_words(c.type)[0] for c in t.components if c.type.tags}
        self.assertEqual(outer_tags, {"version": 0xA0000000, "issuerUniqueID": 0x80000001,
                                      "subjectUniqueID": 0x80000002, "extensions": 0xA0000003})
        reprs = {c.name: c.type.repr.ctype for c in t.components}
        self.assertEqual((reprs["version"], reprs["serialNumber"], reprs["issuerUniqueID"],
                          reprs["extensions"]),
                         ("ASN1INT", "const char*", "ASN1TDynBitStr", "_Asn1RTDList"))
        self.assertEqual(component(t, "version").default_value.value, 0)

    def test_extension_has_no_presence_bits(self):
        t = self.typ("PKIX1Explicit88", "Extension").type
        self.assertEqual([(c.name, c.presence_bit) for c in t.components],
                         [("extnID", None), ("critical", None), ("extnValue", None)])
        self.assertEqual(t.presence_bits, 0)
        self.assertFalse(component(t, "critical").default_value.value)

    def test_general_name(self):
        t = self.typ("PKIX1Implicit88", "GeneralName").type
        self.assertEqual([(a.name, tag_words(a.type)[0], a.type.repr.scalar)
                          for a in t.alternatives], [
            ("otherName", 0xA0000000, False), ("rfc822Name", 0x80000001, True),
            ("dNSName", 0x80000002, True), ("x400Address", 0xA0000003, False),
            ("directoryName", 0xA0000004, False), ("ediPartyName", 0xA0000005, False),
            ("uniformResourceIdentifier", 0x80000006, True), ("iPAddress", 0x80000007, False),
            ("registeredID", 0x80000008, False)])
        # Name is a CHOICE: its [4] cannot be implicit, so the CHOICE's own tag follows
        self.assertEqual(len(component(t, "directoryName").type.wire_tags), 1)

    def test_crl_reason_and_key_usage(self):
        reason = self.typ("PKIX1Implicit88", "CRLReason")
        self.assertEqual([(i.name, i.value) for i in reason.type.items], [
            ("unspecified", 0), ("keyCompromise", 1), ("cACompromise", 2),
            ("affiliationChanged", 3), ("superseded", 4), ("cessationOfOperation", 5),
            ("certificateHold", 6), ("removeFromCRL", 8), ("privilegeWithdrawn", 9),
            ("aACompromise", 10)])
        self.assertEqual((reason.repr.ctype, tag_words(reason.type)), ("ASN1UINT", [0x0A]))
        usage = self.typ("PKIX1Implicit88", "KeyUsage")
        self.assertEqual((usage.repr.bit_capacity, usage.repr.detail), (9, "9 bits, 2 bytes"))

    def test_unformatted_postal_address(self):
        a = self.typ("PKIX1Explicit88", "UnformattedPostalAddress")
        t = a.type
        self.assertEqual(tag_words(t), [0x20000011])
        printable, teletex = t.components
        self.assertEqual((printable.presence_bit, teletex.presence_bit), (0, 1))
        self.assertEqual(printable.type.target.generated_name,
                         "UnformattedPostalAddress_printable_address")
        size = teletex.type.constraints[0].root.constraint.root
        self.assertEqual((size.lower_value, size.upper_value), (1, 180))

    def test_gost_values_and_lifted_types(self):
        gost = self.modules["Gost28147-89-EncryptionSyntax"]
        self.assertEqual(gost.symbols["id-Gost28147-89"].evaluated.arcs, [1, 2, 643, 2, 2, 21])
        algs = gost.symbols["Gost28147-89-Algorithms"].spec.objects
        self.assertEqual([o.name for o in algs], ["Gost28147_89_Algorithms_1"])
        self.assertIs(algs[0].carried["&Type"], gost.symbols["Gost28147-89-Parameters"])
        wrap = self.modules["GostR3410-EncryptionSyntax"]
        self.assertEqual([a.generated_name for a in wrap.types], [
            "Gost28147_89_KeyWrapParameters_ukm", "Gost28147_89_KeyWrapParameters",
            "GostR3410_TransportParameters_ukm", "GostR3410_TransportParameters",
            "GostR3410_KeyTransport"])


if __name__ == "__main__":
    unittest.main()
