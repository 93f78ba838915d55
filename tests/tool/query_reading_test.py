#!/usr/bin/env python3
"""What people type must find what they mean. Called like tool_test.py."""

import unittest

from tool_test import velan  # takes the arguments


class Readings(unittest.TestCase):
    def test_corrections(self):
        """Each query as `explain` writes it in its shortest form."""
        cases = [
            # What no word can match is left out; its operator goes to the next term.
            ('"quick brown", fox', '"quick brown" fox'), ("either / or", "either"), ("a OR – b", "a | b"),
            ("prix : 5 €", "prix 5"), ("a \U0001F600 (? %) b", "a b"), ("[12 a[b a[b] [^a]", "12 a b a[b] [^a]"),
            # Signs that negate, and such that do not.
            ("Velan - User guide", "Velan User guide"), ("a -- b --c", "a b c"), ("wow!great (!a) -b", "wow great -a -b"),
            ('a -"b" !c "d"-e f -', 'a -"b" -c "d" e f'), ("Allumée ! Une", "Allumée Une"),
            # Small keywords in sentences, and elsewhere.
            ("a b c d e f next not", "a b c d e f next not"), ("a b c d e not f", "a b c d e not f"),
            ("a b c d not e", "a b c d -e"), ("a b c d e NOT f not g", "a b c d e -f -g"),
            ("a and b and c or d and e not f", "a b c | d e -f"), ("a b c d e f near/3 g", "a b c d e f NEAR/3 g"),
            ("near/far after/NEXT/2 a NEAR/-1 b", "near/far after/NEXT/2 a NEAR/-1 b"),
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


if __name__ == "__main__":
    unittest.main()
