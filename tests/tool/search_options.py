#!/usr/bin/env python3
"""What the options of the search do. Called like tool_test.py."""

import os
import pty
import subprocess
import unittest

from tool_test import TOOL, InFolder  # takes the arguments


class Output(InFolder):
    def setUp(self):
        super().setUp()
        self.write("a", "top\nkey one\nmid key\nlow\n\nend key far\nkey key\nx\n")
        self.write("b", "no\n")
        self.write("c", "😀" * 30 + " key " + "z" * 30)
        self.write("d", "lamp far\nx far\ny ä far lamp z\n")
        self.write("binary", b"key\0")
        for age, name in enumerate("cba"):
            os.utime(os.path.join(self.folder, name), (1000 + age, 1000 + age))

    def test_forms(self):
        cases = [
            ("-o end|\"one_mid\" a", "2:one\n3:mid\n6:end\n"),
            ("--vimgrep key a c", "a:2:1:key one\na:3:5:mid key\na:6:5:end key far\na:7:1:key key\na:7:5:key key\n"
                                  f"c:1:122:{'😀' * 30} key {'z' * 30}\n"),
            ("-C1 -A2 -B0 end a", "6:end key far\n7-key key\n8-x\n"),
            ("-m3 -H key a", "a:2:key one\na:3:mid key\na:6:end key far\n"),
            ("--max-columns 11 key c", "1:…😀 key zzz…\n"),
            ("--max-columns 1 -oN key c", "k…\n"),
            ("-v --unit line key a", "1:top\n4:low\n5:\n8:x\n"),
            ("-v -l key .", "./b\n./d\n"),
            ("-v key b a", "b:1:no\n"),
            ("-c -h key a c", "4\n1\n"),
            ("-l0 key .", "./a\0./c\0"),
            ("-0 one .", "./a\0002:key one\n"),
            ("--sort hits --count-matches key|no c b a", "a:5\nc:1\nb:1\n"),
            ("--sort modified -l key|no .", "./a\n./b\n./c\n"),
            ("--sort path -l key|no c b a", "a\nb\nc\n"),
            ("--sortr hits --count-matches key|no b a c", "b:1\nc:1\na:5\n"),
            ("--sortr modified -l key|no .", "./c\n./b\n./a\n"),
            ("--sortr path -l key|no c a b", "c\nb\na\n"),
            ("-a key b binary", "binary:1:key\0\n"), ("--text -o key binary", "1:key\n"), ("-uuu -l key binary b", "binary\n"),
            ("-q key absent a", ""),
            ("--binary -e key b binary", "binary: binary file matches\n"),
            ("-e (end -e \"mid a", "3:mid key\n6:end key far\n"),
            ("-F end_[(KEY\"far? a", "6:end key far\n"),
            ("-e absent_(end -e low a", "4:low\n"), ("-e x -e end)_absent a", "8:x\n"),
            ("-iw -e KEY -m1 a", "2:key one\n"),
        ]
        for line, output in cases:
            self.assertEqual(self.velan("search", *(word.replace("_", " ") for word in line.split(" ")))[:2], (0, output), line)

    def test_occurrences_over_line_ends(self):
        self.write("f", "key " + "😀" * 30)
        self.write("g", "lamp\n\nfar x\ny z\nlamp")
        self.write("empty", "")
        cases = [("-o -F lamp_far g", "1:lamp\n3:far\n"), ("-F -c lamp_far_x g", "3\n"), ("--max-columns 7 key f", "1:key 😀…\n"),
                 ("\"lamp_far_x\"|far|lamp g", "1:lamp\n2:\n3:far x\n5:lamp\n"), ("-v -l key empty", "empty\n"),
                 ("\"x_y_z_lamp\"|y|z g", "3:far x\n4:y z\n5:lamp\n")]
        for line, output in cases:
            self.assertEqual(self.velan("search", *(word.replace("_", " ") for word in line.split(" "))), (0, output, ""), line)

    def test_unrestricted(self):
        os.mkdir(os.path.join(self.folder, "s"))
        for name, content in (("s/.ignore", "i\n"), ("s/i", "key"), ("s/.h", "key"), ("s/binary", b"key\0"), ("s/z", "key")):
            self.write(name, content)
        names = ["s/z\n", "s/i\ns/z\n", "s/.h\ns/i\ns/z\n", "s/.h\ns/binary\ns/i\ns/z\n"]
        for times, found in enumerate(names):
            self.assertEqual(self.velan("search", "-l", *["-u"] * times, "key", "s")[1], found, times)
            if times:
                self.assertEqual(self.velan("search", "-l" + "u" * times, "key", "s")[1], found, times)
        self.assertIn("--sort", self.velan("search", "--sort", "path", "--sortr", "path", "key", "s")[2])

    def test_other_places_are_shown_on_demand(self):
        query = "lamp NEAR/1 far"
        lines = ["1:lamp far\n", "2:x far\n", "3:y ä far lamp z\n"]
        self.assertEqual(self.velan("search", query, "d")[1], lines[0] + lines[2])
        self.assertEqual(self.velan("search", "--all-occurrences", query, "d")[1], "".join(lines))
        self.assertEqual(self.velan("search", "--json", query, "d")[1].count('"primary":false'), 1)

    def test_alternatives_that_fail_are_left_out(self):
        self.write("e", "ab\ncd\nef\ngh\n")
        cases = [("ab AND xx OR cd", "2"), ("(ab AND xx) OR (cd AND ef)", "23"), ("ab OR xx AND cd", "12"),
                 ("(ab AND xx OR gh) AND cd", "24"), ("(ab xx) OR (ab cd)", "12"), ("cd XOR (ab xx)", "2"),
                 ("ab OR cd OR xx", "12"), ("(ab AND NOT cd) OR ef", "3"), ("(ab OR cd) NEAR/9 gh OR (ef xx)", "124"),
                 ("ab OPT cd OR (ef xx)", "12"), ("(c* AND xx) OR cd", "2"), ("(ab xx) OR (cd OR a*)", "12"), ("(gh xx) OR (gh NEAR/1 ef)", "34"),
                 ("gh NEAR/9 (ab XOR xx OR cd)", "124"), ("ab XOR cd OR ef", "3")]
        for query, lines in cases:
            self.assertEqual(self.velan("search", "-h", query, "e")[1].replace("\n", "")[::4], lines, query)
            everything = self.velan("search", "-c", "--all-occurrences", query, "e")[1]
            self.assertGreaterEqual(int(everything), len(lines), query)
        self.assertEqual(self.velan("search", "-c", "--all-occurrences", "ab AND xx OR cd", "e")[1], "2\n")
        self.assertEqual(self.velan("search", "--unit", "line", "-c", "(ab xx) OR cd OR ef", "e")[1], "2\n")

    def test_statistics(self):
        counts = ("6 occurrences\n5 lines with occurrences\n2 files with matches\n4 files searched\n"
                  "1 binary file passed over\n")
        for form in ([], ["-q"], ["-l"]):
            self.assertIn(counts, self.velan("search", "--stats", *form, "key", ".")[1], form)

    def test_hints_about_files(self):
        for arguments, hint in ((["lost", "key"], "key is taken as a file; several words are one query in quotation marks: 'lost key'"), (["-t", "html", "x", "."], "no file is left"),
                                (["absent", "."], "absent is in none of the 4 files"), (["--", "absent", "-l"], "-l is taken as a file; options come before --"),
                                (["--files-from", "lost", "key"], "velan explain"), (["next absent", "a"], "next is not there (next is taken as a word"),
                                (["lamps", "."], "./d: lamps is not there; --fuzzy would find lamp")):
            self.assertIn("nothing found; " + hint, self.velan("search", "--hints", "always", *arguments)[2])

    def test_long_lines_on_terminals(self):
        self.write("long", "key " + "x" * 1000)
        try:
            controller, terminal = pty.openpty()
        except OSError:
            self.skipTest("this machine has no terminals to give")
        with subprocess.Popen([TOOL, "search", "--color=never", "key", "long"], cwd=self.folder, stdout=terminal):
            os.close(terminal)
            self.assertEqual(os.read(controller, 65536).decode(), "1:key " + "x" * 396 + "…\r\n")
        os.close(controller)


if __name__ == "__main__":
    unittest.main()
