"""The command line: summary, dumps, listing, catalogue comparison and error output."""

import contextlib
import io
import os
import shutil
import tempfile
import unittest

from asn1gen.__main__ import main

GOOD = """Demo DEFINITIONS IMPLICIT TAGS ::= BEGIN
id-demo OBJECT IDENTIFIER ::= { 1 2 3 }
Reason ::= ENUMERATED { a(0), b(2) }
Record ::= SEQUENCE {
    version [0] EXPLICIT INTEGER { v1(0) } DEFAULT v1,
    names SEQUENCE SIZE (1..MAX) OF IA5String,
    reason Reason OPTIONAL,
    flag BOOLEAN DEFAULT FALSE }
END
"""


class CommandLineTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.dir)
        self.write("Demo.asn", GOOD)

    def write(self, name, text):
        with open(os.path.join(self.dir, name), "w", encoding="utf-8") as f:
            f.write(text)
        return os.path.join(self.dir, name)

    def run_cli(self, *args):
        out, err = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
            status = main(["--modules", self.dir] + list(args))
        return status, out.getvalue(), err.getvalue()

    def test_check_list_dump_and_values(self):
        status, out, err = self.run_cli("--check", "--list", "--dump", "Demo.Record",
                                        "--values", "Demo")
        self.assertEqual((status, err), (0, ""))
        self.assertRegex(out, r"1 modules parsed and resolved: 4 types, 1 values, "
                              r"0 information objects, 0 object sets")
        self.assertIn("Demo (4 types)\n  Reason\n  Record_version\n  Record_names\n  Record\n", out)
        for line in ("value type: ASN1T_Record = structure",
                     "bit 0 versionPresent  (DEFAULT)", "bit 1 reasonPresent  (OPTIONAL)",
                     "version  [0] EXPLICIT Record_version  DEFAULT v1 (= 0)  [bit 0]",
                     "tags: [0] EXPLICIT constructed 0xa0000000, [UNIVERSAL 2] universal "
                     "primitive 0x00000002",
                     "member: ASN1BOOL flag",
                     "lifted inline types: Record_version, Record_names",
                     "id_demo = 1.2.3  (3 arcs)"):
            self.assertIn(line, out)

    def test_dump_by_type_name_alone_and_unknown_names(self):
        status, out, _ = self.run_cli("--dump", "Reason")
        self.assertEqual(status, 0)
        self.assertIn("enumerations: a = 0, b = 2", out)
        status, _, err = self.run_cli("--dump", "Nothing")
        self.assertEqual((status, err), (1, "no type Nothing\n"))

    def test_errors_go_to_stderr_with_positions(self):
        self.write("Broken.asn", "Broken DEFINITIONS ::= BEGIN\nT ::= SEQUENCE { a Missing }\n"
                                 "U ::= SEQUENCE { b Gone }\nEND\n")
        status, out, err = self.run_cli("--check")
        path = os.path.join(self.dir, "Broken.asn")
        self.assertEqual((status, out), (1, ""))
        self.assertEqual(err, "%s:2:20: undefined type 'Missing'\n%s:3:20: undefined type "
                              "'Gone'\n2 error(s)\n" % (path, path))

    def test_catalogue_test_exit_status(self):
        good = self.write("cat.txt", "module Demo 4\n    Reason\n    Record_version\n"
                                     "    Record_names\n    Record\n"
                                     "tableconstrained 0\n")
        status, out, _ = self.run_cli("--catalogue-test", good)
        self.assertEqual(status, 0)
        self.assertIn("catalogue matches", out)
        bad = self.write("bad.txt", "module Demo 2\n    Record\n    Reason\n")
        status, out, _ = self.run_cli("--catalogue-test", bad)
        self.assertEqual(status, 1)
        self.assertIn("FAIL Demo: extra type Record_names", out)
        self.assertIn("ORDER Demo: ", out)

    def test_empty_folder_is_an_error(self):
        os.unlink(os.path.join(self.dir, "Demo.asn"))
        status, _, err = self.run_cli("--check")
        self.assertEqual(status, 1)
        self.assertIn("no .asn module texts in", err)


if __name__ == "__main__":
    unittest.main()
