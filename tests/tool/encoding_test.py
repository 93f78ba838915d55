#!/usr/bin/env python3
"""What the built tool makes of texts in other encodings. Called like tool_test.py."""

import os
import unittest

from tool_test import InFolder  # takes the arguments

class Encodings(InFolder):
    def test_what_nothing_tells_is_assumed_with_one_warning(self):
        self.write("a", "Größe".encode("cp1252"))
        self.write("b", "Größe".encode("cp1252"))
        self.write("binary", b"\xff\0Gr")
        status, output, errors = self.velan("search", "Größe", "a", "b", ".")
        self.assertEqual((status, output.count("Größe")), (0, 4))
        self.assertEqual(errors.count("windows-1252"), 1)
        self.assertIn("--encoding", errors)
        for command in (["words"], ["explain", "Größe"]):
            self.assertEqual(self.velan(*command, "a")[2].count("windows-1252"), 1)
            self.assertEqual(self.velan(*command, "--default-encoding", "latin1", "a")[2], "")
        self.assertEqual(self.velan("search", "--default-encoding", "koi8-r", "Größe", "a"), (1, "", ""))
        self.assertEqual(self.velan("search", "--encoding", "nonsense", "x", "a")[0], 2)

    def test_attributes_tell(self):
        path = os.path.join(self.folder, "a")
        self.write("a", "ключ".encode("koi8-r"))
        try:
            os.setxattr(path, "user.charset", b"koi8-r")
        except OSError:
            self.skipTest("the volume keeps no extended attributes")
        self.assertEqual(self.velan("search", "ключ", "a"), (0, "1:ключ\n", ""))
        self.assertEqual(self.velan("charset", "a"), (0, "a\tKOI8-R\textended attribute user.charset\n", ""))
        self.assertEqual(self.velan("convert", "--to", "windows-1251", "-o", "b", "a")[0], 0)
        self.assertEqual(os.getxattr(os.path.join(self.folder, "b"), "user.charset"), b"windows-1251")

    def test_charset(self):
        cases = [(b"", "UTF-8\tit is valid, and all ASCII", 0), ("é".encode(), "UTF-8\tit is valid", 0),
                 (b"\xef\xbb\xbfa", "UTF-8\tbyte-order mark", 0), (b"\xff\xfea\0", "UTF-16\tbyte-order mark", 0),
                 (b"\xef\xbb\xbf\xff", "UTF-8\tbyte-order mark, but not all of it is valid", 1),
                 ('Ü: <meta content="text/html; charset=iso-8859-1">'.encode(), "UTF-8\tit is valid", 0),
                 (b"\xe9", "unknown\tnothing tells, and it is not UTF-8", 1)]
        for content, verdict, status in cases:
            self.assertEqual(self.velan("charset", "-", stdin=content),
                             (status, f"(standard input)\t{verdict}\n", ""))

    def test_convert(self):
        self.write("a", "Größe €\n😀".encode())
        self.assertEqual(self.velan("convert", "--to", "utf-16be", "-o", "b", "a"), (0, "", ""))
        self.assertEqual(self.velan("convert", "--from", "utf-16be", "b")[1], "Größe €\n😀")
        self.assertEqual(self.velan("convert", "--to", "latin1", "a")[2],
                         "velan: a: line 1: ISO-8859-1 has no U+20AC\n")
        self.assertEqual(self.velan("convert", "--to", "cp1252", "a")[2],
                         "velan: a: line 2: windows-1252 has no U+1F600\n")
        self.write("c", b"a\xe9")
        self.assertEqual(self.velan("convert", "c")[0], 2)
        self.assertEqual(self.velan("convert", "--from", "utf-8", "c")[0], 2)
        self.assertEqual(self.velan("convert", "--from", "utf-8", "--lenient", "c")[1], "a\ufffd")


if __name__ == "__main__":
    unittest.main()
