"""Representations of each construct and presence bits."""

import unittest

from asn1gen.tests.support import compile_one


class RepresentationTest(unittest.TestCase):
    def test_scalars_records_and_strings(self):
        m = compile_one("""
            Serial ::= INTEGER
            Version ::= INTEGER { v1(0), v2(1) }
            Distance ::= INTEGER (0..MAX)
            Millis ::= INTEGER (1..999)
            Offset ::= INTEGER (-12..12)
            Huge ::= INTEGER (0..99999999999)
            Refined ::= Serial (0..255)
            Reason ::= ENUMERATED { a(0), b(1), c(10) }
            Usage ::= BIT STRING { a(0), i(8) }
            Wide ::= BIT STRING { a(0), p(15) }
            Sig ::= BIT STRING
            Key ::= OCTET STRING (SIZE (32))
            Id ::= OBJECT IDENTIFIER
            Text ::= PrintableString
            Bmp ::= BMPString
            Universal ::= UniversalString
            When ::= GeneralizedTime
            Flag ::= BOOLEAN
            Nothing ::= NULL
            Open ::= ANY
            """)
        expected = {
            "Serial": "const char*", "Version": "ASN1INT", "Distance": "ASN1UINT",
            "Millis": "ASN1UINT", "Offset": "ASN1INT", "Huge": "const char*",
            "Refined": "ASN1UINT", "Reason": "ASN1UINT", "Sig": "ASN1TDynBitStr",
            "Key": "ASN1TDynOctStr", "Id": "ASN1OBJID", "Text": "const char*",
            "Bmp": "Asn116BitCharString", "Universal": "Asn132BitCharString",
            "When": "const char*", "Flag": "ASN1BOOL", "Open": "ASN1TOpenType"}
        for name, ctype in expected.items():
            with self.subTest(type=name):
                self.assertEqual(m.symbols[name].repr.ctype, ctype)
        self.assertEqual(m.symbols["Nothing"].repr.detail, "no storage")
        self.assertEqual((m.symbols["Usage"].repr.bit_capacity,
                          m.symbols["Usage"].repr.detail), (9, "9 bits, 2 bytes"))
        self.assertEqual(m.symbols["Wide"].repr.detail, "16 bits, 2 bytes")

    def test_presence_bits_and_choice_storage(self):
        m = compile_one("""
            T ::= SEQUENCE {
                version [0] INTEGER { v1(0) } DEFAULT v1,
                serial INTEGER,
                critical BOOLEAN DEFAULT FALSE,
                issuerID [1] IMPLICIT BIT STRING OPTIONAL,
                mode ENUMERATED { a, b } DEFAULT a,
                ext [3] SEQUENCE OF INTEGER OPTIONAL }
            U ::= SEQUENCE { critical BOOLEAN DEFAULT FALSE, value OCTET STRING }
            C ::= CHOICE { i INTEGER, b [0] BOOLEAN, s [1] IA5String, o [2] OCTET STRING,
                           id [3] OBJECT IDENTIFIER, seq [4] T, n [5] NULL, l [6] SEQUENCE OF T }
            """)
        t = m.symbols["T"].type
        self.assertEqual([(c.name, c.presence_bit) for c in t.components],
                         [("version", 0), ("serial", None), ("critical", None),
                          ("issuerID", 1), ("mode", 2), ("ext", 3)])
        self.assertEqual((t.presence_bits, m.symbols["U"].type.presence_bits), (4, 0))
        held = {a.name: a.type.repr.scalar for a in m.symbols["C"].type.alternatives}
        self.assertEqual(held, {"i": True, "b": True, "s": True, "o": False, "id": False,
                                "seq": False, "n": True, "l": False})


if __name__ == "__main__":
    unittest.main()
