#!/usr/bin/env python3
"""How often does a line of a document, pasted as a query, not find that document? Prints both counts and what failed.

    benchmarks/pasted_lines.py build/test/tools/velan examples/documents [--seed 1] [--lines 600]

Each line is asked twice: as it stands, and between quotation marks, as a phrase. Quotation marks in the line would end
the phrase, so they become blanks. All documents are searched; other finds do not count.
"""
import argparse
import pathlib
import random
import re
import subprocess


def finds(tool, query, folder, path):
    """Whether the query finds the file among all."""
    done = subprocess.run([tool, "search", "-l", "--", query, str(folder)], stdin=subprocess.DEVNULL,
                          capture_output=True, check=False)
    return str(path) in done.stdout.decode().splitlines()


def lines_of(path):
    """The lines that hold a word, in the encoding that the file's mark names or in UTF-8."""
    content = path.read_bytes()
    encoding = "utf-16" if content[:2] in (b"\xff\xfe", b"\xfe\xff") else "utf-8-sig"
    return [line.strip() for line in content.decode(encoding).splitlines() if re.search(r"\w", line)]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tool")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--lines", type=int, default=600)
    options = parser.parse_args()
    lines = [(path, line) for path in sorted(options.folder.rglob("*")) if path.is_file() for line in lines_of(path)]
    picked = random.Random(options.seed).sample(lines, min(options.lines, len(lines)))
    for form, query in (("pasted", lambda line: line),
                        ("quoted", lambda line: '"' + re.sub('["\u201c-\u201f]', " ", line) + '"')):
        failed = [(path, line) for path, line in picked if not finds(options.tool, query(line), options.folder, path)]
        print(f"{form}: {len(failed)} of {len(picked)} lines do not find their document")
        for path, line in failed:
            print(f"  {path.relative_to(options.folder)}: {line}")


if __name__ == "__main__":
    main()
