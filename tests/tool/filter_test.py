#!/usr/bin/env python3
"""What is refused by its bytes against the full search, on texts and pages at random. Called like tool_test.py."""

import os
import random
import unittest

from tool_test import InFolder  # takes the arguments

WORDS = ["kernel", "lighthouse", "Straße", "strasse", "office", "Müller", "encyclopædia", "память", "ガラス", "a1", "ss", "e", "한국"]
# What may stand between two letters of a word, most of it without a trace in the text.
BETWEEN = ["<b>", "</b>", "<i\ntitle='>'>", "<a href=\"x>y\">", "<!-- x -->", "<!-->", "<!->", "<br>", "</p><p>", "<wbr/>",
           "<script>if (a<b) '</script>'</script>", "<style>x{}</style>", "<![CDATA[", "]]>", "<![if x]>", "&shy;", "&#173;",
           "\u00ad", "\r", "\r\n", "-\n", "-\r\n\t", "\u2010\n ", "-<br>", "-</b>\n<p>", "-&#10;", "&#45;<br>", "</b>-<br>",
           "<b>-</b> \n <br>", "&nbsp;", " ", "\n", "\u0301", "&#x308;", "&amp;", "&", "<", ">", "<é>", "<1b>", "<x:b>",
           "<!DOCTYPE a [<!ENTITY b 'c'>", "]>", " ] >", "<?xml x?>", "<pre>", "</pre>", "<ſcript>", "=\"", "'", "\u3000", "-", "<B CLASS=x>"]
WRITTEN = {"ss": ["ß", "&szlig;", "&#xDF;"], "ff": ["ﬀ"], "ffi": ["ﬃ", "&#xFB03;"], "ü": ["u\u0308", "&uuml;", "u&#776;"],
           "ß": ["ss", "&szlig"], "æ": ["ae", "&aelig;"], "ガ": ["カ\u3099"], "е": ["&#x435;"], "국": ["\u1100\u116e\u11a8"]}
HEADS = ["", "<html>", "<!DOCTYPE html>\n<html><head><title>x</title><body>", "<?xml version='1.0'?>",
         "<?xml version='1.0' encoding='CHARSET'?>", "<html><head><meta charset=CHARSET></head><body>",
         "<html><script>'<meta charset=koi8-r>'</script><meta http-equiv=x content='text/html; charset=CHARSET'>"]
CHARSETS = ["utf-8", "utf-8", "utf-8", "utf-8-sig", "utf-16", "utf-16-le", "cp1252", "iso8859-1", "shift-jis", "koi8-r", "utf-32", "gb18030",
            "iso2022-jp"]
QUERIES = [*WORDS, "light*", "*house", "k?rnel", "kern[e]l", '"kernel office"', "kernel AND office", "kernel NEAR/3 office",
           "kernel OR strasse", "(kernel OR память) AND NOT office", "house", "*ern*", "ﬃce", "Mu\u0308ller", "STRASSE OR 한국"]
OPTIONS = [[], [], [], ["-s"], ["-d"], ["--verbatim"], ["--no-wildcards"], ["--no-wildcards", "-s"], ["--fuzzy"],
           ["--no-markup"], ["--encoding", "utf-8"]]


class Filter(InFolder):
    maxDiff = None

    def written(self, word, choose):
        """The word as it may be written, divided and changed."""
        if choose.random() < 0.3:
            for plain, forms in WRITTEN.items():
                word = word.replace(plain, choose.choice(forms))
        if choose.random() < 0.3:
            word = "".join(f"&#{ord(c)};" if choose.random() < 0.3 else c for c in word)
        if choose.random() < 0.2:
            word = "".join(chr(ord(c) + 0xFEE0) if c.isascii() and c.isalnum() else c for c in word)
        for _ in range(choose.choice([0, 1, 1, 2])):
            at = choose.randrange(len(word) + 1)
            between = "".join(choose.choice(BETWEEN) for _ in range(choose.choice([1, 1, 2, 3])))
            word = word[:at] + between + word[at:]
        return choose.choice([word, word.upper()]) if choose.random() < 0.3 else word

    def content(self, choose):
        charset = choose.choice(CHARSETS)
        head = choose.choice(HEADS).replace("CHARSET", choose.choice([charset, "utf-8", "iso-8859-1"]))
        body = " ".join(self.written(choose.choice(WORDS), choose) for _ in range(choose.choice([1, 2, 6])))
        if choose.random() < 0.5:
            body = f"<p>{body}</p> x"
        content = (head + choose.choice(["", " filler " * 20]) + body).encode(charset, "replace")
        return content if choose.random() < 0.95 else content + b"\xE4\xFF x"

    def test_words_divided(self):
        pages = ["<?xml ?><!DOCTYPE a [<!ENTITY b 'c'>x ker<!-- y --> ] >nel", "<?xml ?><a><![CDATA[ker]]>nel", "<p>ker-<script>x</script>nel",
                 "<p>ker-<1style>x</style>nel", "<p>ker</b>-<br>nel", "<p>ker<b>-</b><br>nel", "<p>ker<!--><i title='>'>nel", "<p>k&#101;rnel",
                 "<p>kern&#69<i>l", "<p>ker&shy;&shy;nel", "<p>ker&#x2010;<li> nel", "<pre>ker<b>-&#10;nel"]
        for page in pages:
            self.write("a.html", page)
            self.assertEqual(self.velan("search", "-l", "kernel", "a.html")[1], "a.html\n", page)
        for page in ("<p>ker<br>nel", "<p>ker</p>nel ker&nbsp;nel", "<p>k&eacute;rnel", "<p title=kern&#101l>", "<script>kern<b>el</script>"):
            self.write("a.html", page)
            self.assertEqual(self.velan("search", "-l", "kernel", "a.html")[1], "", page)

    def test_nothing_is_lost(self):
        """With -v everything is decoded, so that each document must be found either with it or without."""
        for seed in range(int(os.environ.get("VELAN_FILTER_ROUNDS", "2"))):
            choose = random.Random(seed)
            self.contents = {}
            for i in range(400):
                name = str(i) + choose.choice([".html", ".html", ".xml", ".txt", ""])
                self.contents[name] = self.content(choose)
                self.write(name, self.contents[name])
            names = set(os.listdir(self.folder))
            refused = 0
            for query in QUERIES:
                options = choose.choice(OPTIONS)
                if query.startswith("*") and "--no-wildcards" in options:
                    continue
                found, other = (set(self.velan("search", "-l", "--binary", *flag, *options, query, *sorted(names))[1].splitlines())
                                for flag in ([], ["-v"]))
                lost = {name: self.contents[name] for name in sorted(names - found - other)[:3]}
                self.assertEqual((found & other, lost), (set(), {}), (seed, query, options))
                refused += len(other)
            self.assertGreater(refused, 1000)
            for name in names:
                os.remove(os.path.join(self.folder, name))


if __name__ == "__main__":
    unittest.main()
