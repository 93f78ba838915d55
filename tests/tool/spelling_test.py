#!/usr/bin/env python3
"""Words that are not written as people type them, as the built tool finds them. Called like tool_test.py."""

import json
import os
import random
import re
import unicodedata
import unittest

from tool_test import InFolder  # takes the arguments


def plain(source):
    """The word that a part of a text stands for, told without the tool."""
    source = re.sub("[-\u2010\xad](\r\n|\r|\n)[ \t]*|\xad", "", source)
    return unicodedata.normalize("NFKC", source).lower().replace("ß", "ss").replace("æ", "ae").replace("œ", "oe")


class Spelling(InFolder):
    def places(self, content, encoding, query, *options, name="a.txt"):
        self.write(name, content.encode(encoding))
        status, output, errors = self.velan("search", "--json", *options, query, name)
        self.assertEqual(errors, "")
        with open(os.path.join(self.folder, name), "rb") as file:
            content = file.read()
        places = [(event["data"], place) for event in map(json.loads, output.splitlines())
                  if event["type"] == "match" for place in event["data"]["submatches"]]
        found = []
        for event, place in places:
            start, end = place["byte_offset"], place["byte_offset"] + place["byte_length"]
            found.append(content[start:end].decode(encoding.removesuffix("-sig") if start else encoding))
            before = re.sub("\r\n?", "\n", content[:start].decode(encoding)) if "\n" in output else ""
            self.assertEqual(event["lines"]["text"].encode()[place["start"]:place["end"]].decode(), found[-1])
            self.assertEqual(place["line"], before.count("\n") + 1)
        self.assertEqual(status, 0 if found else 1)
        return found

    def test_forms(self):
        cases = [
            ("Müller", "Mu\u0308ller MÜLLER\nM\xadu\u0308l\xadler Muller Mül-\nler Mül\u2010\r\n   ler Mül\xad\nler x", 6),
            ("Mu\u0308ller", "Müller", 1), ("office", "oﬃce of\ufb01ce O\ufb03CE", 3), ("o\ufb03ce", "office", 1),
            ("strasse", "Straße STRAẞE Strasse Stra-\nße stra\u0301ße", 4), ("straße", "Straße Strasse STRASSE", 3), ("Ma\xdfstä\u0062e", "Massstäbe Maßstäbe", 2), ("ﬂu\u0308ge", "flüge", 1), ("ＡＢＣ", "abc", 1), ("cœur", "coeur", 1), ('"gro\xdfe straße"', "grosse Straße große Strasse", 2), ("x AND NOT straße", "x Strasse", 0),
            ("encyclopaedia", "encyclopædia Encyclopaedia", 2), ("abc1", "ＡＢＣ１ ａｂｃ１ abc1", 3), ("ガ", "カ\u3099", 1),
            ("한국", "\u1112\u1161\u11ab\u1100\u116e\u11a8", 1), ("known", "well-\nknown", 1), ("wellknown", "well-\n\nknown", 0),
            ("wellknown", "well-\n  known\nwell- known -\nknown well-", 1), ("abcdef", "ab-\ncd-\n ef", 1), ("cdef", "ab-\ncd-\n ef", 0),
            ("strassen", "Straßen-\nbahn", 1), ("strassenbahn OR strassen", "Straßen-\nbahn", 1),
            ("fix", "\u0308 \ufb01\u0300 \ufb01x", 1),
            ('"the lighthouse of"', "the light-\r\n\thouse of", 1), *((query, "the light-\r\nhouse", 1) for query in ("light*", "*thouse", "l[i]ghtho?se")), ("x\u0302y", "x\u0302y", 1),
            ("the NEAR/1 of", "the light-\nhouse of", 0), ("the NEAR/2 of", "the Stra\xadße of", 2), ("the NEAR/2 strasse NEAR/1 of", "the Straße of", 3),
        ]
        for query, text, count in cases:
            for filler in ("", "plain words " * 40):
                for encoding in ("utf-8", "utf-16"):
                    found = self.places(filler + text, encoding, query)
                    self.assertEqual(len(found), count, (query, text, found))
                    for word in found:
                        self.assertIn(plain(word), plain(query).strip('"') + " the lighthouse of", (query, text))
            if query.isalnum():
                words = re.findall(rf"(?<!\w){query.lower()}(?!\w)", text.lower())
                self.assertEqual(len(self.places(text, "utf-8", query, "--verbatim")), len(words), (query, text))

    def test_joined_letters_in_patterns(self):
        for query, text, count in (("straß*", "Strassen Straße", 2), ("straße?", "strassen Straßen", 2),
                                   ("gro?straße", "Großstraße", 1), ("stra[ß]e", "Straße", 1)):
            self.assertEqual(len(self.places(text, "utf-8", query)), count, query)
        self.assertIn("Straße is looked for as Strasse", self.velan("explain", "Straße")[1])
        self.assertNotIn("Strasse", self.velan("explain", "--verbatim", "Straße")[1])

    def test_units_and_pages(self):
        self.write("a.txt", "old light-\n house lamp\nStraße\n")
        for query, lines in (("old lighthouse", "1\n2\n"), ("house lamp", "2\n"), ("lighthouse lamp", ""), ("strasse", "3\n")):
            output = self.velan("search", "--unit", "line", query, "a.txt")[1]
            self.assertEqual(re.sub(":.*", "", output), lines, query)
        self.write("c.txt", "Licht-\nhäuser")
        for option in ("-d", "--fuzzy=0.9"):
            self.assertEqual(self.velan("search", "-c", option, "Lichthauser", "c.txt")[1], "2\n", option)
        self.write("b.html", "<p>Mu&#x308;l<b>l</b>er, of&#xFB01;ce")
        self.assertIn("found 1 time, at 1:4", self.velan("explain", "Müller", "b.html")[1])
        self.assertIn('"byte_offset":25,"byte_length":12', self.velan("search", "--json", "offiCE", "b.html")[1])
        self.assertEqual(self.velan("words", "b.html")[1], "1\tMüller\n1\toffice\n")

    def test_every_index(self):
        for length in range(58, 68):
            text = "a" * length + " of\ufb01ce ke-\ny"
            self.assertEqual(self.places(text, "utf-8", "office OR key"), ["of\ufb01ce", "ke-\ny"], length)

    def test_any_text(self):
        """Nothing is found where it is not, whatever stands around it, and no plain word is lost."""
        generator = random.Random(7)
        pieces = ["key", "k\xadey", "ke-\ny", "ke\u2010\r\n y", "ＫＥＹ", "ke", "-", "\n", " ", "\u0308", "ß", "\xad", "\ufb01", "é", "😀", " 鍵 "]
        for _ in range(30):
            text = "".join(generator.choice(pieces) + generator.choice(["", " "]) for _ in range(generator.choice([9, 300])))
            found = self.places(text, "utf-8-sig", "key")
            self.assertEqual({plain(word) for word in found} - {"key"}, set(), text)
            self.assertGreaterEqual(len(found), len(self.places(text, "utf-8-sig", "key", "--verbatim")), text)


if __name__ == "__main__":
    unittest.main()
