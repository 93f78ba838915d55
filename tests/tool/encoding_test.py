#!/usr/bin/env python3
"""What the built tool makes of texts in other encodings. Called like tool_test.py."""

import json
import os
import tempfile
import unittest

from tool_test import velan  # takes the arguments

# Each with a word that it can express; Python has them from another hand.
ENCODINGS = {
    "utf-8": ("utf-8", "ключ"), "utf-16": ("utf-16", "ключ"), "utf-32": ("utf-32", "한국"),
    "iso-8859-1": ("latin-1", "Größe"), "windows-1250": ("cp1250", "řeka"), "ibm866": ("cp866", "ключ"),
    "shift_jis": ("shift-jis", "日本"), "gb18030": ("gb18030", "日本"), "johab": ("johab", "한국"),
    "iso-8859-16": ("iso8859-16", "Größe"), "x-mac-croatian": ("mac-croatian", "Größe"),
}


class Encodings(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())

    def write(self, name, content):
        with open(os.path.join(self.folder, name), "wb") as file:
            file.write(content)

    def run_in_folder(self, *arguments, **options):
        return velan(*arguments, folder=self.folder, **options)

    def test_the_same_words_in_every_encoding(self):
        for name, (python, word) in ENCODINGS.items():
            text = f"One line\nand {word} twice: {word}.\n"
            content = text.encode(python)
            self.write("text", content)
            status, output, errors = self.run_in_folder("search", "--json", "--encoding", name, word, "text")
            self.assertEqual((status, errors), (0, ""), name)
            events = [json.loads(line) for line in output.splitlines()]
            self.assertEqual(events[0]["data"]["encoding"].lower(), name)
            places = events[1]["data"]["submatches"]
            self.assertEqual(len(places), 2, name)
            before = text.split(word)[0]
            self.assertEqual(places[0]["byte_offset"], len(before.encode(python)), name)
            self.assertEqual(places[1]["byte_offset"], len((before + word + " twice: ").encode(python)), name)
            self.assertEqual({place["byte_length"] for place in places},
                             {len((before + word).encode(python)) - len(before.encode(python))}, name)

    def test_what_nothing_tells_is_assumed_with_one_warning(self):
        self.write("a", "Größe".encode("cp1252"))
        self.write("b", "Größe".encode("cp1252"))
        self.write("binary", b"\xff\0Gr")
        status, output, errors = self.run_in_folder("search", "Größe", "a", "b", ".")
        self.assertEqual((status, output.count("Größe")), (0, 4))
        self.assertEqual(errors.count("windows-1252"), 1)
        self.assertIn("--encoding", errors)
        for command in (["words"], ["explain", "Größe"]):
            self.assertEqual(self.run_in_folder(*command, "a")[2].count("windows-1252"), 1)
            self.assertEqual(self.run_in_folder(*command, "--default-encoding", "latin1", "a")[2], "")
        self.assertEqual(self.run_in_folder("search", "--default-encoding", "koi8-r", "Größe", "a"), (1, "", ""))
        self.assertEqual(self.run_in_folder("search", "--encoding", "nonsense", "x", "a")[0], 2)

    def test_attributes_tell(self):
        path = os.path.join(self.folder, "a")
        self.write("a", "ключ".encode("koi8-r"))
        try:
            os.setxattr(path, "user.charset", b"koi8-r")
        except OSError:
            self.skipTest("the volume keeps no extended attributes")
        self.assertEqual(self.run_in_folder("search", "ключ", "a"), (0, "1:ключ\n", ""))
        self.assertEqual(self.run_in_folder("charset", "a"), (0, "a\tKOI8-R\textended attribute user.charset\n", ""))
        self.assertEqual(self.run_in_folder("convert", "--to", "windows-1251", "-o", "b", "a")[0], 0)
        self.assertEqual(os.getxattr(os.path.join(self.folder, "b"), "user.charset"), b"windows-1251")

    def test_charset(self):
        cases = [(b"", "UTF-8\tit is valid, and all ASCII", 0), ("é".encode(), "UTF-8\tit is valid", 0),
                 (b"\xef\xbb\xbfa", "UTF-8\tbyte-order mark", 0), (b"\xff\xfea\0", "UTF-16\tbyte-order mark", 0),
                 (b"\xef\xbb\xbf\xff", "UTF-8\tbyte-order mark, but not all of it is valid", 1),
                 (b"\xe9", "unknown\tnothing tells, and it is not UTF-8", 1)]
        for content, verdict, status in cases:
            self.assertEqual(self.run_in_folder("charset", "-", stdin=content),
                             (status, f"(standard input)\t{verdict}\n", ""))

    def test_convert(self):
        self.write("a", "Größe €\n😀".encode())
        self.assertEqual(self.run_in_folder("convert", "--to", "utf-16be", "-o", "b", "a"), (0, "", ""))
        self.assertEqual(self.run_in_folder("convert", "--from", "utf-16be", "b")[1], "Größe €\n😀")
        self.assertEqual(self.run_in_folder("convert", "--to", "latin1", "a")[2],
                         "velan: a: line 1: ISO-8859-1 has no U+20AC\n")
        self.assertEqual(self.run_in_folder("convert", "--to", "cp1252", "a")[2],
                         "velan: a: line 2: windows-1252 has no U+1F600\n")
        self.write("c", b"a\xe9")
        self.assertEqual(self.run_in_folder("convert", "c")[0], 2)
        self.assertEqual(self.run_in_folder("convert", "--from", "utf-8", "c")[0], 2)
        self.assertEqual(self.run_in_folder("convert", "--from", "utf-8", "--lenient", "c")[1], "a\ufffd")


if __name__ == "__main__":
    unittest.main()
