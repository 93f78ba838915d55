#!/usr/bin/env python3
"""Runs the built tool on the example documents and on files made for the purpose.

Usage: tool_test.py TOOL PROJECT_FOLDER [unittest arguments]
"""

import json
import os
import pty
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

TOOL = os.path.abspath(sys.argv.pop(1))
PROJECT = os.path.abspath(sys.argv.pop(1))
DOCUMENTS = os.path.join(PROJECT, "examples", "documents")


# Each with a word that it can express; Python has them from another hand.
ENCODINGS = {
    "utf-8": ("utf-8", "ключ"), "utf-16": ("utf-16", "ключ"), "utf-32": ("utf-32", "한국"),
    "iso-8859-1": ("latin-1", "Größe"), "windows-1250": ("cp1250", "řeka"), "ibm866": ("cp866", "ключ"),
    "shift_jis": ("shift-jis", "日本"), "gb18030": ("gb18030", "日本"), "johab": ("johab", "한국"),
    "iso-8859-16": ("iso8859-16", "Größe"), "x-mac-croatian": ("mac-croatian", "Größe"),
    "utf-16be": ("utf-16-be", "ключ"), "utf-16le": ("utf-16-le", "ключ"), "iso-8859-2": ("iso8859-2", "řeka"),
    "iso-8859-5": ("iso8859-5", "ключ"), "windows-1251": ("cp1251", "ключ"), "windows-1252": ("cp1252", "Größe"),
    "koi8-r": ("koi8-r", "ключ"), "macintosh": ("mac-roman", "Größe"), "euc-jp": ("euc-jp", "日本"),
    "big5": ("big5", "中文"), "euc-kr": ("euc-kr", "한국"),
}


def velan(*arguments, stdin=b"", folder=None, environment=None):
    """Exit status, standard output and standard error. Standard input is a pipe."""
    done = subprocess.run([TOOL, *arguments], input=stdin, capture_output=True, cwd=folder,
                          env={**os.environ, **(environment or {})}, check=False)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


class OnDocuments(unittest.TestCase):
    def test_documented_cases(self):
        """The cases on the query language's page, each through a search on a file with the text."""
        with open(os.path.join(PROJECT, "docs", "query-language.md"), encoding="utf-8") as file:
            page = file.read()
        cases = re.findall(r"^\| `(.*)` \| (Yes|No) \|$", page, re.MULTILINE)
        self.assertEqual(len(cases), 48)
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write(re.search(r"^> (Lorem .*)$", page, re.MULTILINE).group(1))
            file.flush()
            for query, matches in cases:
                expected = (0, file.name + "\n", "") if matches == "Yes" else (1, "", "")
                self.assertEqual(velan("search", "-l", query, file.name), expected, query)
        status, output, errors = velan("selftest")
        self.assertEqual((status, output.count("Success: "), errors), (0, 48, ""))

    def test_queries(self):
        child = ["letters/schoolchild-thanks.txt"]
        cases = [
            (["budget NEAR/5 exhibition"], ["articles/annual-report-2018.txt", "letters/director-budget-appeal.txt",
                                            "minutes/2018-03-13-trustees.txt"]),
            (["灯台 AND 美術館"], ["articles/hyaku-no-akari-ten.txt", "letters/morita-bijutsukan.txt",
                               "notes/exhibition-labels-draft.txt"]),
            (["美?館 AND 灯*"], ["articles/hyaku-no-akari-ten.txt", "letters/morita-bijutsukan.txt",
                              "notes/exhibition-labels-draft.txt"]),
            (["ARCIVIST leting"], child),
            (["-s", "ARCIVIST leting"], []),
            (["lighthouse* AND exibition"], child),
            (["--no-wildcards", "light*house AND exibition"], []),
            (["Mowenhafen protokoll"], []),
            (["-d", "Mowenhafen protokoll"], ["minutes/protokoll-leihgaben-moewenhafen.txt"]),
            (["--fuzzy", "magnifying AND class"], child),
            (["--fuzzy=0.95", "magnifying AND class"], []),
            (["--distance", "1", "class NEAR leting"], []),
            (["--distance", "2", "class NEAR leting"], child),
        ]
        for arguments, names in cases:
            status, output, errors = velan("search", "-l", *arguments, ".", folder=DOCUMENTS)
            self.assertEqual((status, output.split(), errors),
                             (0 if names else 1, ["./" + name for name in names], ""), arguments)

    def test_threads_change_nothing(self):
        for form in ([], ["--json"], ["-C", "2"], ["-c"]):
            one, many = (velan("search", *form, "-j", count, "the OR der", DOCUMENTS) for count in ("1", "16"))
            self.assertEqual(one, many, form)
            self.assertGreater(len(one[1]), 1000)


class Readme(unittest.TestCase):
    def test_examples_find_something(self):
        with open(os.path.join(PROJECT, "README.md"), encoding="utf-8") as file:
            examples = re.search(r"examples/documents`:\n\n```sh\n(.*?)```", file.read(), re.DOTALL).group(1).splitlines()
        self.assertGreater(len(examples), 15)
        with tempfile.TemporaryDirectory() as folder:
            documents = shutil.copytree(DOCUMENTS, os.path.join(folder, "documents"))
            environment = {**os.environ, "PATH": os.path.dirname(TOOL) + os.pathsep + os.environ["PATH"]}
            for example in examples:
                done = subprocess.run(["sh", "-c", example], cwd=documents, env=environment, stdin=subprocess.DEVNULL,
                                      capture_output=True, check=False)
                self.assertEqual((done.returncode, done.stderr), (0, b""), example)
                silent = re.search(r" (keyed set |-o note.txt|> page.html)", example)
                self.assertEqual(not silent, len(done.stdout) > 0, example)


class InFolder(unittest.TestCase):
    """Tests that run the tool in a folder of their own."""
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content.encode() if isinstance(content, str) else content)

    def velan(self, *arguments, **options):
        return velan(*arguments, folder=self.folder, **options)


class OnFiles(InFolder):
    def search(self, *arguments, **options):
        return self.velan("search", *arguments, **options)

    def test_output_forms(self):
        self.write("a.txt", "top\nkey one\nmid key\nlow\n\nend key\nkey key\nx\n")
        self.write("b.txt", "no\n")
        cases = [
            (["key", "a.txt"], "2:key one\n3:mid key\n6:end key\n7:key key\n"),
            (["-c", "key", "a.txt"], "4\n"),
            (["--count-matches", "key", "a.txt", "b.txt"], "a.txt:5\n"),
            (["-C1", "one OR end", "a.txt"], "1-top\n2:key one\n3-mid key\n--\n5-\n6:end key\n7-key key\n"),
            (["-C", "9", "mid", "a.txt"], "1-top\n2-key one\n3:mid key\n4-low\n5-\n6-end key\n7-key key\n8-x\n"),
            (["--unit", "line", "key AND NOT end", "a.txt"], "2:key one\n3:mid key\n7:key key\n"),
            (["--unit", "paragraph", "key AND end", "a.txt"], "6:end key\n7:key key\n"),
            (["NOT key", "a.txt", "b.txt"], "b.txt:1:no\n"),
            (['"one mid"', "a.txt"], "2:key one\n3:mid key\n"),
        ]
        for arguments, output in cases:
            self.assertEqual(self.search(*arguments), (0, output, ""), arguments)

    def test_colors(self):
        self.write("a.txt", "big old lamp, far far away from the small lamp and lamp\n")
        primary, further, plain = "\x1b[1;31m", "\x1b[2;31m", "\x1b[0m"
        arguments_of_all = ["--all-occurrences", "--color", "always"]
        painted = (f"\x1b[32m1{plain}:big {primary}old{plain} {primary}lamp{plain}, far far away from the small "
                   f"{further}lamp{plain} and {further}lamp{plain}\n")
        bare = "1:big old lamp, far far away from the small lamp and lamp\n"
        for arguments, output in ((arguments_of_all, painted), (["--color", "never"], bare), ([], bare)):
            environment = {"NO_COLOR": "1"}  # counts for "auto" only
            self.assertEqual(self.search(*arguments, "old NEXT lamp", "a.txt", environment=environment)[1], output)
        for no_color, paints in (("", True), ("1", False)):
            try:
                controller, terminal = pty.openpty()
            except OSError:
                self.skipTest("this machine has no terminals to give")
            with subprocess.Popen([TOOL, "search", "old", "a.txt"], cwd=self.folder, stdout=terminal,
                                  env={**os.environ, "TERM": "xterm", "NO_COLOR": no_color}):
                os.close(terminal)
                self.assertEqual(primary in os.read(controller, 65536).decode(), paints)
            os.close(controller)

    def test_json_offsets(self):
        """Offsets must cut each occurrence out of the file's bytes, its UTF-16 units, its line, what is printed."""
        text = "kopf\U0001F600 ключ\r\n\r\nzwei ключ \ufffd ключ\r\nein\r\nключ"
        encodings = {"plain": "utf-8", "mark": "utf-8-sig", "little": "utf-16-le", "big": "utf-16-be"}
        for name, encoding in encodings.items():
            mark = "\ufeff" if encoding.startswith("utf-16") else ""
            self.write(name, (mark + text).encode(encoding))
        key = "ключ".encode()
        malformed = b"\xff\xf0\x9f\x98 " + key + b" \xe2\x82\r\n\xed\xa0\x80 " + key
        self.write("malformed", malformed)
        query = '"ein ключ" OR ключ'
        searches = [([], query, encodings, 4), (["--encoding", "utf-8"], query, {"malformed": "utf-8"}, 2)]
        for name, (python, word) in ENCODINGS.items():
            self.write(python, f"One line\nand {word} twice: {word}.\n".encode(python))
            searches.append((["--encoding", name], word, {python: python}, 2))
        for options, query, files, expected in searches:
            status, output, errors = self.search("--json", *options, query, *files)
            self.assertEqual((status, errors), (0, ""), options)
            events = [json.loads(line) for line in output.splitlines()]
            self.assertEqual(self.check_events(events, files), {name: expected for name in files}, options)
            if options:
                self.assertEqual(events[0]["data"]["encoding"].lower(), options[1])

    def check_events(self, events, encodings):
        self.assertEqual(events[-1]["type"], "summary")
        found = {}
        for event in events[:-1]:
            path = event["data"]["path"]["text"]
            with open(os.path.join(self.folder, path), "rb") as file:
                content = file.read()
            if event["type"] != "match":
                continue
            text = content.decode(encodings[path], "replace").removeprefix("\ufeff")
            units = text.encode("utf-16-le")
            lines = text.split("\n")
            printed = event["data"]["lines"]["text"]
            self.assertTrue("\n".join(lines[event["data"]["line_number"] - 1:]).startswith(printed))
            rest = content[event["data"]["absolute_offset"]:].decode(encodings[path], "replace")
            self.assertTrue(rest.startswith(printed), (path, rest, printed))
            found[path] = found.get(path, 0) + len(event["data"]["submatches"])
            for place in event["data"]["submatches"]:
                word = place["match"]["text"]
                start, length = place["byte_offset"], place["byte_length"]
                self.assertEqual(content[start:start + length].decode(encodings[path]), word, path)
                start, length = 2 * place["utf16_offset"], 2 * place["utf16_length"]
                self.assertEqual(units[start:start + length].decode("utf-16-le"), word, path)
                self.assertEqual(printed.encode()[place["start"]:place["end"]].decode(), word, path)
                first = word.split("\r\n")[0]
                self.assertTrue(lines[place["line"] - 1][place["column"] - 1:].startswith(first), path)
        return found

    def test_json_envelope(self):
        self.write("a.txt", "one lamp\nno\n\"lamp\\\" \tnear\nno\n")
        name = b"b\xe9.txt"  # not valid UTF-8
        with open(os.path.join(os.fsencode(self.folder), name), "wb") as file:
            file.write(b"lamp")
        events = [json.loads(line) for line in self.search("--json", "-C1", "lamp OR absent", ".")[1].splitlines()]
        self.assertEqual([event["type"] for event in events],
                         ["begin", "match", "context", "match", "context", "end", "begin", "match", "end", "summary"])
        self.assertEqual(events[3]["data"]["lines"]["text"], "\"lamp\\\" \tnear\n")
        self.assertEqual(events[6]["data"]["path"], {"bytes": "Li9i6S50eHQ="})
        self.assertEqual(events[-1]["data"]["stats"], {"searches": 2, "searches_with_match": 2, "bytes_searched": 33,
                                                       "matched_lines": 3, "matches": 3})

    def test_folders(self):
        for name in ("b/2.txt", "b/10.txt", "a.txt", ".hidden/x.txt", "b/.y.txt", "c"):
            self.write(name, "lamp\n")
        os.symlink("../a.txt", os.path.join(self.folder, "b", "link"))
        os.mkfifo(os.path.join(self.folder, "b", "pipe"))
        names = "./a.txt ./b/10.txt ./b/2.txt ./c"
        hidden = "./.hidden/x.txt ./a.txt ./b/.y.txt ./b/10.txt ./b/2.txt ./c"
        self.assertEqual(self.search("-l", "lamp", ".")[1].split(), names.split())
        self.assertEqual(self.search("-l", "lamp", ".", "--hidden")[1].split(), hidden.split())
        self.assertEqual(self.search("-l", "lamp", "c", "b")[1].split(), ["c", "b/10.txt", "b/2.txt"])
        # Without a path the current folder, as standard input is no pipe here.
        output = subprocess.run([TOOL, "search", "-l", "lamp"], cwd=self.folder, stdin=subprocess.DEVNULL,
                                capture_output=True, check=False).stdout.decode()
        self.assertEqual(output.split(), ["a.txt", "b/10.txt", "b/2.txt", "c"])

    def test_standard_input(self):
        self.assertEqual(self.search("lamp", stdin=b"a\nlamp\n"), (0, "2:lamp\n", ""))
        self.write("a.txt", "lamp")
        self.assertEqual(self.search("-l", "lamp", "-", "a.txt", stdin=b"lamp"), (0, "(standard input)\na.txt\n", ""))

    def test_trouble_does_not_stop_the_rest(self):
        self.write("d/image", b"\x89PNG\0lamp")
        self.write("d/text", "lamp\n")
        self.write("d/utf16", "\ufefflamp\0".encode("utf-16-le"))
        self.assertEqual(self.search("lamp", "d"), (0, "d/text:1:lamp\n", ""))
        status, output, errors = self.search("lamp", "absent", "d/image", "d/text")
        self.assertEqual((status, output), (2, "d/text:1:lamp\n"))
        self.assertEqual(errors, "velan: absent: No such file or directory\nvelan: d/image: binary file, not searched\n")
        self.write("late", b"word " * 20000 + b"\0")  # far behind the beginning, which tells most kinds
        self.assertEqual(self.search("lamp", "late"), (2, "", "velan: late: binary file, not searched\n"))

    def test_lines_of_other_systems(self):
        cases = [(b"a\r\nlamp\r\n", "2:lamp\n"), (b"a\rlamp\rb", "2:lamp\n"), (b"a\rlamp\nb", "1:a\rlamp\n"),
                 (b"lamp", "1:lamp\n"), (b"\xef\xbb\xbflamp", "1:lamp\n")]
        for content, output in cases:
            self.write("a.txt", content)
            self.assertEqual(self.search("*lamp*", "a.txt")[1], output, content)

    def test_closed_pipe_and_full_disk(self):
        self.write("a.txt", "lamp\n" * 200000)
        with subprocess.Popen([TOOL, "search", "lamp", "a.txt"], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            self.assertEqual(process.stdout.readline(), b"1:lamp\n")
            process.stdout.close()
            self.assertEqual(process.stderr.read(), b"")
        self.assertEqual(process.returncode, 0)
        if os.path.exists("/dev/full"):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([TOOL, "search", "lamp", "a.txt"], cwd=self.folder, stdout=full,
                                      stderr=subprocess.PIPE, check=False)
            self.assertEqual((done.returncode, done.stderr.count(b"\n")), (2, 1))


class Usage(unittest.TestCase):
    def test_errors_take_one_line(self):
        cases = [[], ["absent"], ["search"], ["search", "--no-wildcards", "-d", "x"], ["explain", "x", "absent"],
                 ["search", "--no-wildcards", "--fuzzy", "x"], ["search", "--json", "-l", "x"], ["search", "-lc", "x"],
                 ["search", "--unit", "page", "x"], ["search", "--fuzzy=high", "x"], ["search", "--fuzzy=nan", "x"], ["search", "--fuzzy=1.5", "x"],
                 ["search", "--color", "red", "x"], ["search", "-j", "0", "x"], ["search", "-C", "-1", "x"],
                 ["search", "--distance", "-1", "x"], ["search", b"\xff"], ["match"], ["words", "--top", "0"]]
        for arguments in cases:
            status, output, errors = velan(*arguments)
            self.assertEqual((status, output, errors.count("\n")), (2, "", 1), arguments)
            self.assertRegex(errors, "^velan: ", arguments)

    def test_help_and_version(self):
        page = velan("manual")[1].replace("\\-", "-")
        commands = re.findall(r'^\.SS "velan (.*)"$', page, re.MULTILINE)
        self.assertGreater(len(commands), 20)
        for command in ["", *commands]:
            status, output, errors = velan(*command.split(), "--help")
            self.assertEqual((status, errors), (0, ""), command)
            self.assertLess(output.count("\n"), 24, command)
            everything = velan(*command.split(), "--help", "--all")[1]
            for option in re.findall(r"^ .*?(--[a-z-]+)", everything, re.MULTILINE):
                self.assertIn(option, page)

    def test_slips_get_the_nearest(self):
        cases = [(["serch", "x"], "did you mean search?"), (["blocks", "read", "--help"], "velan blocks has no command read"),
                 (["blocks", "repiar"], "did you mean repair?"), (["search", "--contxt=3", "x"], "did you mean --context?"), (["grep", "x"], "did you mean search?"),
                 (["search", "--include", "*.c", "x"], "-g 'GLOB'"), (["search", "-E", "x"], "no regular expressions"), (["search", "-map"], "comes after --"),
                 (["search", "--xyz", "x"], "there is no option --xyz (see")]
        for arguments, expected in cases:
            status, output, errors = velan(*arguments)
            self.assertEqual((status, output), (2, ""), arguments)
            self.assertIn(expected, errors)

    def test_completions(self):
        """Asks the shell itself what it would offer."""
        script = velan("completion", "bash")[1]
        cases = [("velan se", "search selftest"), ("velan blocks re", "repair"), ("velan search --max-co", "--max-columns --max-count"),
                 ("velan search --sort m", "modified"), ("velan search --type ht", "html"), ("velan keyed set f 1 v --type st", "string")]
        for line, expected in cases:
            words = " ".join(f"'{word}'" for word in line.split())
            done = subprocess.run(["bash", "-c", f"{script}\nCOMP_WORDS=({words}) COMP_CWORD={len(line.split()) - 1}\n"
                                   "_velan; printf '%s\n' \"${COMPREPLY[@]}\""], capture_output=True, check=True)
            self.assertEqual(sorted(done.stdout.decode().split()), expected.split(), line)

    def test_version(self):
        self.assertRegex(velan("--version")[1], r"^velan \d+\.\d+\.\d+\n$")
        for level, expected, complaint in (("scalar", r"sets: none.*", ""), ("best", r"sets: .*", "WARNING: .*best\n")):
            _, output, errors = velan("--version", "--verbose", environment={"VELAN_CPU": level})
            self.assertRegex(output, r"(?s)^velan .*\nICU \d+.*\nzlib \d+.*" + expected)
            self.assertRegex(errors, f"^{complaint}$")

    def test_queries_of_any_kind(self):
        for query, status in (("-missing", 0), ("(lamp", 0), (")lamp AND", 0), ("[a", 1), ("", 1), ("()", 1)):
            self.assertEqual(velan("search", "-l", "--", query, "-", stdin=b"lamp")[0], status, query)


class OtherCommands(unittest.TestCase):
    def test_match(self):
        words = ["house", "Household", "lighthouse", "h[o]use", "x"]
        cases = [
            (["house*"], ["house"]), (["-i", "house*"], ["house", "Household"]), (["*house"], ["house", "lighthouse"]),
            (["-v", "*house*"], ["Household", "h[o]use", "x"]), (["h[o]use"], ["h[o]use"]),
            (["--unix", "h[a-o]use"], ["house"]),
            (["--unix", "-i", "-v", "[^HX]*"], ["house", "Household", "h[o]use", "x"]),
        ]
        for arguments, expected in cases:
            expectation = (0, "".join(word + "\n" for word in expected), "")
            self.assertEqual(velan("match", *arguments, *words), expectation, arguments)
            self.assertEqual(velan("match", *arguments, stdin="\r\n".join(words).encode()), expectation, arguments)
        self.assertEqual(velan("match", "z*", *words), (1, "", ""))

    def test_words(self):
        text = "Öl und Wasser, und Feuer: öl-Wasser 灯台の光".encode()
        self.assertEqual(velan("words", "-n", "3", stdin=text), (0, "2\tWasser\n2\tund\n1\tFeuer\n", ""))
        self.assertEqual(velan("words", "-i", "--min-length", "2", stdin=text),
                         (0, "2\tund\n2\twasser\n2\töl\n1\tfeuer\n1\t灯台\n", ""))
        self.assertEqual(velan("words", stdin=b"light-\n  house light-house"), (0, "1\thouse\n1\tlight\n1\tlighthouse\n", ""))
        self.assertEqual(velan("words", stdin=b" - "), (1, "", ""))

    def test_urls(self):
        cases = [
            (["decode", "caf%C3%A9%20a", "b"], b"", (0, "caf\u00e9 a\nb\n", "")),
            (["decode", "--encoding", "latin1"], b"%E9\nx\n", (0, "\u00e9\nx\n", "")),
            (["decode", "--set", "standard", "%41%20"], b"", (0, "%41 \n", "")),
            (["decode", "--set", "ascii", "%41%E9"], b"", (0, "A%E9\n", "")),
            (["encode", "--leave", "#", "--escape", "/", "a/#\u00e9"], b"", (0, "a%2F#%C3%A9\n", "")),
            (["encode", "--set", "ascii", "\u00e9-1"], b"", (0, "\u00e9%2d1\n", "")),
            (["params", "h?b=%20&a=1&a=2&c="], b"", (0, "a\t2\nb\t%20\n", "")),
            (["params", "--decode", "--json", "h?b=%20&a=1"], b"", (0, '{"a":"1","b":" "}\n', "")),
            (["params", "--bare", "--name", "a"], b"a=1\nb=2\n", (0, "1\n", "")),
            (["params", "h"], b"", (1, "", "")),
        ]
        for arguments, stdin, expected in cases:
            self.assertEqual(velan("url", *arguments, stdin=stdin), expected, arguments)
        status, output, errors = velan("url", "decode", "100%", "a")
        self.assertEqual((status, output), (2, "a\n"))
        self.assertRegex(errors, "^velan: 100%: .*\n$")
        self.assertEqual(velan("url", "encode", "--encoding", "none-such", "a")[0], 2)

    def test_explain(self):
        query = 'old NEAR/2 (lamp OR "big [l]*") AND NOT [^a] XOR ab*c* NEXT *[z|y]'
        status, output, errors = velan("explain", query)
        self.assertEqual((status, errors), (0, ""))
        for word, kind, normal in (("big", 0, "big"), ("[l]*", 7, "[l]*"), ("[^a]", 9, "[^a]"), ("ab*c*", 5, "ab*c*"),
                                   ("*[z|y]", 8, "*[zy]")):
            line = next(line.lstrip("│|├└─` ") for line in output.splitlines() if f" {word}: type" in line)
            self.assertTrue(line.startswith(f"{word}: type {kind}, ") and line.endswith("normal form " + normal), line)
        self.assertIn('  "??": found 1 time, at 1:3\n    ??: type 10, stands for any one word of fitting length\n',
                      velan("explain", '"??"', "-", stdin=b"a bc def")[1])

    def test_trees(self):
        """How operators bind, as outlines: each node with its depth."""
        cases = [
            ("a", "1 a"), ("a b c", "1 AND 2 a 2 b 2 c"), ("a OR b c", "1 AND 2 OR 3 a 3 b 2 c"), ("a OR (b c)", "1 OR 2 a 2 AND 3 b 3 c"),
            ("a NEAR/5 (b OR c) -x", "1 AND 2 NEAR/5 3 a 3 OR 4 b 4 c 2 NOT x"), ("a b BEFORE/3 c", "1 AND 2 a 2 BEFORE/3 3 b 3 c"),
            ("a NEAR/2 b NEXT c", "1 AND 2 NEAR/2 3 a 3 b 2 NEXT/1 3 b: as above 3 c"), ("a -b NEAR/1 c", "1 AND 2 a 2 NOT b 2 NEAR/1 3 NOT b: as above 3 c"),
            ("a OR b NEAR/1 c", "1 AND 2 OR 3 a 3 b 2 NEAR/1 3 b: as above 3 c"), ("a XOR b XOR -(c d)", "1 XOR 2 a 2 b 2 NOT 3 AND 4 c 4 d"),
            ("a OPT b", "1 OPT 2 a 2 b"), ("a NEAR/0 b", "1 AND 2 a 2 b"), ("a NOT NEAR/4 (b c)", "1 NOT NEAR/4 2 a 2 AND 3 b 3 c"),
            ("a OR b c d e f g h i j k l m", "1 from left to right 2 a 2 OR b " + " ".join(f"2 AND {c}" for c in "cdefghijklm")),
        ]
        for locale, inner, last, trunk in (("de_DE.UTF-8", "├─ ", "└─ ", "│  "), ("C", "|- ", "`- ", "|  ")):
            for query, outline in cases:
                tree = velan("explain", query, environment={"LC_ALL": locale})[1].split("tree:\n")[1]
                nodes = []
                for line in tree.splitlines():
                    name = line[2:].lstrip("├─└│|-` ")
                    signs = line[2:len(line) - len(name)]
                    self.assertEqual([s for s in re.findall("...", signs) if s not in (inner, last, trunk, "   ")], [], line)
                    self.assertIn(signs[-3:], ("", inner, last), line)
                    nodes.append(f"{len(signs) // 3 + 1} {name}")
                self.assertEqual(" ".join(nodes), outline, query)

    def test_explain_a_file(self):
        text = "an old lamp\nünd OLD ships\n".encode("utf-8-sig")
        status, output, _ = velan("explain", "old NOT NEXT lamp AND missing", "-", stdin=text, environment={"LC_ALL": "C"})
        self.assertEqual(status, 1)
        self.assertEqual(output.splitlines()[4:], [
            "tree:", "  AND: does not hold", "  |- NOT NEXT/1: holds", "  |  |- old: found 2 times, at 1:4, 2:5",
            "  |  `- lamp: found 1 time, at 1:8", "  `- missing: not found", "(standard input): does not match",
            "  missing is not there"])
        self.assertEqual(velan("explain", "old lamp", "-", stdin=text)[0], 0)
        for query, verdict in (("old OPT absent", "OPT: holds"), ("old XOR lamp", "XOR: does not hold"), ("(old XOR lamp) OR ships", "OR: holds"),
                               ("absent OPT old", "OPT: does not hold"), ("NOT (old absent)", "NOT: holds"), ("old NEAR/1 ships", "NEAR/1: holds")):
            self.assertIn(f"tree:\n  {verdict}\n", velan("explain", query, "-", stdin=text)[1], query)
        # Depth is no danger.
        self.assertEqual(velan("explain", "(" * 50000 + "old", "-", stdin=text)[0], 0)


if __name__ == "__main__":
    unittest.main()
