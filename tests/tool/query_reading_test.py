#!/usr/bin/env python3
"""What people type must find what they mean. Called like tool_test.py."""

import json
import os
import pty
import subprocess
import tempfile
import unittest

from tool_test import TOOL, velan  # takes the arguments


class Readings(unittest.TestCase):
    def test_corrections(self):
        """Each query as `explain` writes it in its shortest form."""
        cases = [
            # What no word can match is left out; its operator goes to the next term.
            ('"quick brown", fox', '"quick brown" fox'), ("either / or", "either"), ("a OR – b", "a | b"),
            ("prix : 5 €", "prix 5"), ("a \U0001F600 (? %) b", "a b"), ("[12 a[b a[b] [^a]", "12 a b a[b] [^a]"),
            # Signs that negate, and such that do not.
            ("Velan - User guide", "Velan User guide"), ("a -- b --c", "a b c"), ("wow!great (!a) -b", "wow great -a -b"),
            ('a -"b" !c "d"-e f -', 'a -"b" -c "d" -e f'), ("Allumée ! Une", "Allumée Une"),
            # Small keywords in sentences, and elsewhere.
            ("a b c d e f next not", "a b c d e f next not"), ("a b c d e not f", "a b c d e not f"),
            ("a b c d not e", "a b c d -e"), ("a b c not d.", "a b c not d."), ("a b not c!", "a b -c"), ("a b c d e NOT f not g", "a b c d e -f -g"),
            ("a and b and c or d and e not f", "a b c | d e -f"), ("a b c d e f near/3 g", "a b c d e f NEAR/3 g"),
            ("near/far after/NEXT/2 a NEAR/-1 b", "near/far after/NEXT/2 a NEAR/-1 b"),
            ("next year or", "next year"), ("why not (near b before) not a", "why -(near b before) -a"), ("before and after", "before after"),
            ("NEAR a AND", "a"), ("not a", "-a"), ("not", "not"),
            # Quotation marks of other languages.
            ("«a b» ‹c d› 「e」f", '"a b" "c d" "e" f'), ("»a b» »c d« don’t ‘e f’", '"a b" "c d" don’t "e f"'),
            ('« a "b» c"', 'a "b» c"'), ("a» b «c", "a» b «c"),
        ]
        for query, normalized in cases:
            self.assertIn(f"\nnormalized:   {normalized}\n", velan("explain", "--", query)[1], query)
        for which, normalized in (("any", "-f g"), ("upper", "not f and g"), ("auto", "not f g")):
            output = velan("explain", "--keywords", which, "a b c d e not f and g")[1]
            self.assertIn(f"\nnormalized:   a b c d e {normalized}\n", output, which)
        self.assertIn("\nnormalized:   \"a. b\" c\n", velan("explain", "--no-wildcards", '"(a. b)" c?')[1])
        for query in ("%", "-\U0001F600", '"," ??'):
            status, output, errors = velan("search", "--", query, stdin=b"a")
            self.assertEqual((status, output, errors.count("can never be found")), (2, "", 1), query)

    def test_question_marks(self):
        """They are tried as punctuation where nothing was found, also on what can be read only once."""
        cases = [("lamp?", "lamp", "a lamp", True), ("lamp?", "lamp", "lamps, lamp lamp", False),
                 ('"a lamp ? b?!" c', '"a lamp b" c', "c a lamp: b", True), ("l?mp", "l mp", "l mp", False),
                 ("http://a.b/c?d=e", "http://a.b/c/d=e", "http://a.b/c?d=e", True),
                 ("l?mp* x?", "l?mp* x", "lamps x", True)]
        for query, other, text, is_read_otherwise in cases:
            found = velan("search", "--count-matches", query, stdin=text.encode())
            self.assertEqual(found == velan("search", "--count-matches", other, stdin=text.encode()), is_read_otherwise, query)
        self.assertEqual(velan("search", "lamp?", "-", "absent", stdin=b"lamp")[2].count("absent"), 1)
        for text, as_punctuation in ((b"lamp", True), (b"lamps", False), (b"x", False)):
            summary = json.loads(velan("search", "--json", "lamp?", stdin=text)[1].splitlines()[-1])["data"]
            self.assertEqual((summary["stats"]["searches"], summary["question_marks_as_punctuation"]), (1, as_punctuation), text)

    def test_usual_slips_are_similar(self):
        for slip, meant in (("reciept", "receipt"), ("recieve", "receive"), ("adress", "address"), ("harbor", "harbour")):
            self.assertEqual(velan("search", "--fuzzy", slip, stdin=f"a {meant} recital dress".encode())[0], 0, slip)

    def test_notes(self):
        """What explain says beside the tree; what a search that finds nothing says, on request only."""
        cases = [
            ("red or blue and green", "(red OR blue) AND green; the other reading: red OR (blue AND green)"),
            ("a OR b NEAR c d", "(a OR b) AND (b NEAR/10 c) AND d; the other reading: a OR ((b NEAR/10 c) AND d)"),
            ("R&D", 'operator AND; as text: "R&D"'), ("see next week", 'operator NEXT; to find the word: see "next" week'), ("a within 5 of b", "for the distance: NEAR/5"),
            ("lamp~2", "operator NEAR; for words similar to lamp: --fuzzy"),
            ('"quick fox"~5', "quick NEAR/5 fox"), ("foo^2", 'XOR, one of the two but not both; as text: "foo^2"'),
            ("fox NEAR 3 quick", "3 is taken as a word; for the distance: NEAR/3"), ("a NEAR/2.5 b", "as NEAR/2:"),
            ("ls -la", '"-la"'), ("see array[0]", '"array 0"'), ("a w/5 b", "NEAR/5"), ("a NEAR(5) b", "NEAR/5"),
            ("title:lamp", "no fields"), ("lamp.*", "no regular expression"), ("a, %", "% is left out"),
        ]
        for query, note in cases:
            self.assertIn(note, velan("explain", "--", query)[1], query)
            if query != "a, %":
                self.assertIn(note, velan("search", "--hints", "always", "--", query, stdin=b"x")[2], query)
            self.assertEqual(velan("search", "--", query, stdin=b"x"), (1, "", ""), query)
        self.assertIn('to find the word: (a "next" b) OR (c)', velan("explain", "-e", "a next b", "-e", "c")[1])
        for query in ("a or b or c", "a b OR c", "l[ai]mp AND NOT red", "a NEAR/3 (b OR c) AND-d", "x -draft", "http://a.b", "a: b NEARBY"):
            self.assertNotIn("note:", velan("explain", "--", query)[1], query)

    def test_reasons(self):
        text = "The old lamp of Zürich.\nThe keeper received a letter; two lamps, no lighthouse there. Straße frei.\nLeucht-Turm U.S.A. Email\n".encode()
        cases = [
            ("zurich", "-d would find Zürich at 1:17"), ("recieved", "--fuzzy would find received at 2:12"),
            ("light", "*light* would find lighthouse at 2:45"), ("-s Lamp", "without -s one would find lamp at 1:9"),
            ("old NEAR/3 letter", "8 words apart where they are nearest (at 1:5 and 2:23), not within 3"),
            ("letter BEFORE (old)", "nowhere within 10"), ("letter BEFORE old", "letter never stands before old"),
            ("old NOT lamp", "lamp must not be there, but is, at 1:9"), ("old XOR lamp", "XOR wants one of them"),
            ('"frei strasse"', "its words are, but"), ('"old keeper"', "its words are, but not in a row"), ('"old hat"', "nor is hat"),
            ("old (hat OR cap) letter", "hat is not there"), ("there? hat?", "hat? is not there"),
            ("leuchtturm", "Leucht-Turm would find Leucht-Turm at 3:1"), ("usa", "U.S.A would find U.S.A at 3:13"), ("e-mail", "email would find Email at 3:20"),
            ("hat cap (old OR x) (cap NEAR coat)", "hat is not there\n  cap is not there\n  coat is not there\n"),
            ("hat OPT cap", "does not match\n  hat is not there\n"),
        ]
        for query, reason in cases:
            options, query = (["-s"], query[3:]) if query.startswith("-s ") else ([], query)
            self.assertIn(reason, velan("explain", *options, query, "-", stdin=text)[1], query)
        self.assertIn("without the question mark it matches", velan("explain", "old?", "-", stdin=text)[1])
        with tempfile.TemporaryDirectory() as folder:
            for name, words in (("a", "a letter"), ("b", "received a letter"), ("c", "nothing"), ("d", "letters hats")):
                with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                    file.write(words)
            self.assertRegex(velan("search", "--hints", "always", "recieved letter", folder)[2],
                             "nothing found; .*/b: recieved is not there; --fuzzy would find received at 1:1\n")
            # Little that is missing counts more than what would find much.
            self.assertRegex(velan("search", "--hints", "always", "letter hat", folder)[2], "/a: hat is not there\n")
        controller, terminal = pty.openpty()
        for both, hints in ((True, 1), (False, 0)):
            done = subprocess.run([TOOL, "search", "old NEAR/3 letter"], input=text, stdout=terminal,
                                  stderr=terminal if both else subprocess.PIPE, check=False)
            seen = os.read(controller, 65536) if both else done.stderr
            self.assertEqual(seen.count(b"8 words apart"), hints, both)
        os.close(terminal)
        os.close(controller)


if __name__ == "__main__":
    unittest.main()
