#!/usr/bin/env python3
"""Where the built tool finds words in pages. Called like tool_test.py."""

import html
import json
import os
import re
import unittest

from tool_test import InFolder  # takes the arguments

PAGE = ("<!-- A remark --><html>\n<head>DECLARED<title>Nil</title><script>if (a<b) word()</script></head>\n<body>"
        "<p>First <b>wo</b>rd w<i\ntitle='>'>or</i>d w&#111;r&#x64; WO&shy;RD.<!-- word --><p class=word>\n"
        "<br>A LOCAL\n  new\tword &amp; <pre>\n word\n\n  wor<a>d </a> </pre> <td>wo<td>rd</td>"
        "<li>word&nbsp;w<wbr>ord<div>word</div>word<![CDATA[ word & more]]>\n</body></html> ")
PLACES = 12  # "wo" and "rd" are none


def text_of(source):
    """What a reader sees of a part of a page, told by rules that fit these pages only."""
    source = re.sub(r"<(?:[^>']|'[^']*')*>", "", source)
    return re.sub(r"\s+", " ", html.unescape(source)).replace("\u00ad", "")


class Pages(InFolder):
    def check(self, content, encoding, *options, name="page.html"):
        """Each place must be one of the word in the file's bytes, in its units, and in the line and column named."""
        self.write(name, content)
        status, output, errors = self.velan("search", "--json", *options, "word", name)
        self.assertEqual((status, errors), (0, ""), encoding)
        places = []
        for event in (json.loads(line)["data"] for line in output.splitlines() if '"match"' in line[:20]):
            before = content[:event["absolute_offset"]].decode(encoding)
            self.assertEqual(event["line_number"], before.count("\n") + 1)
            for place in event["submatches"]:
                printed = event["lines"]["text"].encode()[place["start"]:place["end"]].decode()
                start, end = place["byte_offset"], place["byte_offset"] + place["byte_length"]
                before, until = (content[:offset].decode(encoding).removeprefix("\ufeff") for offset in (start, end))
                found = until[len(before):]
                self.assertEqual((text_of(found), printed.lower()), (printed, "word"), found)
                self.assertRegex(found, r"(?s)^[wW&].*[dD;]$", "no tags around it")
                self.assertEqual((place["line"], place["column"]),
                                 (before.count("\n") + 1, len(before) - before.rfind("\n")), found)
                units = [len(text.encode("utf-16-le")) // 2 for text in (before, until)]
                self.assertEqual([place["utf16_offset"], place["utf16_offset"] + place["utf16_length"]], units, found)
                places.append(start)
        self.assertEqual(places, sorted(set(places)))
        return len(places)

    def test_spaces(self):
        """A run of spaces is one, whatever it is written with."""
        page = "<p>one &nbsp;two &shy; three&shy;&amp;  four\n<b> five</b> six &no; &<![CDATA[ a & b ]]>"
        self.write("page.html", page.encode())
        self.assertEqual(self.velan("text", "page.html"), (0, "one two three& four five six &no; & a & b\n", ""))

    def test_places(self):
        forms = [("utf-8", "", "ключ \U0001F600"), ("utf-8-sig", "", "ключ"), ("utf-16", "utf-8", "ключ \U0001F600"),
                 ("cp1252", "windows-1252", "naïve"), ("shift-jis", "Shift_JIS", "日本"), ("koi8-r", "koi8-r", "ключ"),
                 ("utf-8", "utf-16", "ключ"), ("iso2022-jp", "iso-2022-jp", "日本")]
        for encoding, charset, local in forms:
            page = PAGE.replace("DECLARED", f'<meta charset="{charset}">' if charset else "").replace("LOCAL", local)
            for content in (page, page.replace("\n", "\r\n")):
                self.assertEqual(self.check(content.encode(encoding), encoding), PLACES, encoding)
        content = PAGE.replace("LOCAL", "ключ").encode("cp1251")
        self.assertEqual(self.check(content, "cp1251", "--encoding", "cp1251"), PLACES)
        self.assertEqual(self.check(content, "cp1251", "--default-encoding", "cp1251", name="page"), PLACES)

    def test_lines(self):
        self.write("a.html", "<p>one\nlamp\n<p>two<p>lamp\n<br>lamp")
        self.assertEqual(self.velan("search", "lamp", "a.html")[1], "1:one lamp\n3:lamp\n4:lamp\n")
        self.assertEqual(self.velan("search", "--vimgrep", "one OR lamp", "a.html")[1],
                         "".join(f"a.html:{at}\n" for at in ("1:4:one lamp", "2:1:one lamp", "3:10:lamp", "4:5:lamp")))
        self.assertEqual(self.velan("search", "-C1", "two", "a.html")[1], "2-\n3:two\n3-\n")
        self.assertEqual(self.velan("search", "--no-markup", "lamp", "a.html")[1],
                         "2:lamp\n3:<p>two<p>lamp\n4:<br>lamp\n")
        self.assertIn("found 3 times, at 2:1, 3:10, 4:5", self.velan("explain", "lamp", "a.html")[1])
        self.assertEqual(self.velan("words", "-n1", "a.html")[1], "3\tlamp\n")
        self.write("a.xml", "<?xml ?><!DOCTYPE a [\n<!ENTITY b 'c'>\n<!ENTITY d 'e'>\n] >\n<a>]>lamp</a>")
        self.assertEqual(self.velan("search", "lamp", "a.xml")[1], "5:]>lamp\n")

    def test_attributes(self):
        page = ("<meta name='Description' content='on w&#111;rd'>\n<p title=word>Key <img title='a &quot;word' alt=\"my word\">way"
                "<b title='wo'>rd</b> <td alt='x'>word</td title='word'><meta name=x content='word'><i word='word' alt=''>end")
        self.assertEqual(self.check(page.encode(), "utf-8", "--attributes"), 5)
        self.assertEqual(self.check(page.encode("utf-16"), "utf-16", "--attributes"), 5)
        self.assertEqual(self.check(page.encode(), "utf-8"), 1)
        self.write("a.html", page)
        self.assertEqual(self.velan("text", "--attributes", "a.html")[1],
                         'on word\n\nword\nKey\na "word\nmy word way\nwo\nrd\tx word\nend\n')
        self.write("b.html", "<img alt='caf&eacute;'>")
        self.assertEqual([self.velan("search", "-l", *options, "café", "b.html")[1] for options in ([], ["--attributes"])], ["", "b.html\n"])
        for broken in ("<p title='word", "<p title=word", "<p alt=\"a' title='word\">", "<img alt=<b title=word>"):
            self.write("b.html", broken)
            self.assertEqual(self.velan("search", "--attributes", "absent", "b.html")[::2], (1, ""), broken)

    def test_what_is_a_page(self):
        word = "<b>wo</b>rd"
        cases = [("a.html", word, True), ("A.XHTML", word, True), ("a.txt", word, False), ("a.txt", f"<html>{word}", True),
                 ("a", f" \n<!-- x -->\n<!DOCTYPE html>{word}", True), ("a", f"<?xml version='1.0'?>{word}", True),
                 ("a.php", f"<?php '{word}'", False), ("a.php", f"<html>{word}", True), ("a.md", f"<p>{word}", False),
                 ("a.dtd", f"<?xml ?>{word}", False), ("a.strings", f"{word}", False), ("a", f"<htmlx>{word}", False)]
        for name, content, is_page in cases:
            for encoding in ("utf-8", "utf-8-sig", "utf-16"):
                self.write(name, content.encode(encoding))
                self.assertEqual(self.velan("search", "-l", "word", name)[0], 0 if is_page else 1, (name, content))
        for content, expected in ((b"<p>\0word", 2), (b"<p title='word", 0), (b"<p><!-- word", 1), (b"", 1)):
            self.write("a.html", content)
            status, _, errors = self.velan("search", "word", "a.html")
            self.assertEqual((status, "binary file" in errors), (expected, expected == 2), content)


if __name__ == "__main__":
    unittest.main()
