#!/usr/bin/env python3
"""Searches a folder with the tool, and with ripgrep and ugrep where they can do something near it.

Usage: search_tree.py FOLDER NAME=TOOL [NAME=TOOL ...] [--xapian INDEX] [--judge] [--rounds N] [--threads N]
                      [--only TEXT] [-- SEARCH OPTIONS]

Prints a Markdown table: CPU seconds / wall seconds / peak memory in MB of the best of N rounds, and how many files are
found. Several tools, such as one from before a change, must find the same files; --judge has Python decide most
queries, too, for files that are UTF-8 and no pages, which takes minutes. An index that xapian_index.py made of the folder is asked, too, and its cells
end in how many files it finds by its own rules for words.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
import time
import unicodedata

RG = ["rg", "--sort", "path", "-uu", "-il"]
UGREP = ["ugrep", "-r", "-I", "-il"]
BOOL = [*UGREP, "--files", "--bool"]
WORD = r"[^\W_\u3040-\u30FF\u3400-\u9FFF]"


def word(pattern, flags=re.IGNORECASE):
    """A test for a text: does it hold a word that the pattern describes?"""
    compiled = re.compile(rf"(?<!{WORD})(?:{pattern})(?!{WORD})", flags)
    return lambda text: compiled.search(text) is not None


def every(*patterns):
    tests = [word(pattern) for pattern in patterns]
    return lambda text: all(test(text) for test in tests)


def both(first, second):
    return lambda text: first(text) and second(text)


def near(first, second, distance, ordered=False, without=False):
    """A test: do the words lie that near? `without`: is there a first word with no second one that near?"""
    present = every(first) if without else every(first, second)

    def test(text):
        if not present(text):
            return False
        words = [found.group().lower() for found in re.finditer(f"{WORD}+", text)]
        firsts = [i for i, found in enumerate(words) if found == first]
        lowest = 1 if ordered else -distance
        close = [second in words[max(i + lowest, 0):i + distance + 1] for i in firsts]
        return not all(close) if without else any(close)
    return test


def plain(test):
    """The test of a text without its diacritics."""
    return lambda text: test("".join(unit for unit in unicodedata.normalize("NFD", text)
                                     if unicodedata.category(unit) != "Mn"))


# The query, options of the tool, what comes near it elsewhere (None: nothing), and the test of a text by Python.
QUERIES = [
    ("kernel", [], [*RG, "-w", "kernel"], [*UGREP, "-w", "kernel"], every("kernel")),
    ("zyzzyvaq", [], [*RG, "-w", "zyzzyvaq"], [*UGREP, "-w", "zyzzyvaq"], every("zyzzyvaq")),
    ("the", [], [*RG, "-w", "the"], [*UGREP, "-w", "the"], every("the")),
    ("allocation", ["-s"], ["rg", "--sort", "path", "-uu", "-lw", "allocation"], ["ugrep", "-r", "-I", "-lw", "allocation"],
     word("allocation", 0)),
    ("kernel AND memory", [], None, [*BOOL, "kernel memory"], every("kernel", "memory")),
    ("kernel AND memory AND allocation", [], None, [*BOOL, "kernel memory allocation"],
     every("kernel", "memory", "allocation")),
    ("zyzzyvaq AND the", [], None, [*BOOL, "zyzzyvaq the"], every("zyzzyvaq", "the")),
    ("mutex OR semaphore", [], [*RG, "-w", "mutex|semaphore"], [*BOOL, "mutex|semaphore"], word("mutex|semaphore")),
    ("(mutex OR semaphore) AND deadlock", [], None, [*BOOL, "(mutex|semaphore) deadlock"],
     both(word("mutex|semaphore"), word("deadlock"))),
    ("kernel AND NOT memory", [], None, [*BOOL, "kernel -memory"],
     both(word("kernel"), lambda text: not word("memory")(text))),
    ("NOT kernel", [], ["rg", "--sort", "path", "-uu", "-iw", "--files-without-match", "kernel"],
     [*BOOL, "-kernel"], lambda text: not word("kernel")(text)),
    ("mutex XOR semaphore", [], None, [*BOOL, "(mutex -semaphore)|(semaphore -mutex)"],
     lambda text: word("mutex")(text) != word("semaphore")(text)),
    ("kernel AND (memory NEAR/5 allocation)", [], None, [*BOOL, "kernel memory allocation"],
     both(word("kernel"), near("memory", "allocation", 5))),
    ("memory NEAR/5 allocation", [], None, [*BOOL, "memory allocation"], near("memory", "allocation", 5)),
    ("memory NEAR/50 allocation", [], None, [*BOOL, "memory allocation"], near("memory", "allocation", 50)),
    ("signal BEFORE/3 handler", [], None, [*BOOL, "signal handler"], near("signal", "handler", 3, ordered=True)),
    ("file NEAR/3 NOT descriptor", [], None, [*BOOL, "file -descriptor"], near("file", "descriptor", 3, without=True)),
    ('"memory allocation"', [], [*RG, r"\bmemory\s+allocation\b"], [*UGREP, r"\bmemory\s+allocation\b"],
     word(r"memory[\W_]+allocation")),
    ('"of the file system"', [], [*RG, r"\bof\s+the\s+file\s+system\b"], [*UGREP, r"\bof\s+the\s+file\s+system\b"],
     word(r"of[\W_]+the[\W_]+file[\W_]+system")),
    ("alloc*", [], [*RG, r"\balloc"], [*UGREP, r"\balloc"], word(f"alloc{WORD}*")),
    ("*alloc*", [], [*RG, "alloc"], [*UGREP, "alloc"], word(f"{WORD}*alloc{WORD}*")),
    ("*ocation", [], [*RG, r"ocation\b"], [*UGREP, r"ocation\b"], word(f"{WORD}*ocation")),
    ("s?maph*re", [], [*RG, r"\bs\wmaph\w*re\b"], [*UGREP, r"\bs\wmaph\w*re\b"], word(f"s{WORD}maph{WORD}*re")),
    ("col[ou]r[sz]", [], [*RG, r"\bcol[ou]r[sz]\b"], [*UGREP, r"\bcol[ou]r[sz]\b"], word("col[ou]r[sz]")),
    ("[mn]utex", [], [*RG, r"\b[mn]utex\b"], [*UGREP, r"\b[mn]utex\b"], word("[mn]utex")),
    ("semaphroe", ["--fuzzy"], None, [*UGREP, "-Z2", "-w", "semaphroe"], None),
    ("память", [], [*RG, "-w", "память"], [*UGREP, "-w", "память"], every("память")),
    ("память AND файл", [], None, [*BOOL, "память файл"], every("память", "файл")),
    ("ファイル", [], [*RG, "ファイル"], [*UGREP, "ファイル"], None),
    ("ファイル AND システム", [], None, [*BOOL, "ファイル システム"], None),
    ("fichier", ["-d"], [*RG, "-w", "fichier"], [*UGREP, "-w", "fichier"], plain(word("fichier"))),
    ("systeme AND memoire", ["-d"], None, [*BOOL, "syst[eè]me m[eé]moire"], plain(every("systeme", "memoire"))),
    (" OR ".join(f"qzword{i}" for i in range(1000)), [],
     [*RG, "-w", "|".join(f"qzword{i}" for i in range(1000))], [*UGREP, "-w", "|".join(f"qzword{i}" for i in range(1000))],
     None),
]

# What asks an index of Xapian for nearly the same, where that is not the query itself; None: it has nothing like it.
XAPIAN = {
    "file NEAR/3 NOT descriptor": None,
    "signal BEFORE/3 handler": "signal ADJ/3 handler",
    "*alloc*": None, "*ocation": None, "s?maph*re": None, "col[ou]r[sz]": None, "[mn]utex": None, "semaphroe": None,
    "ファイル": None, "ファイル AND システム": None,
    "fichier": None, "systeme AND memoire": None, "allocation": None,
}


def quest(index, query):
    """The command that asks an index, None where it cannot be asked."""
    asked = XAPIAN.get(query, query)
    if not index or not asked:
        return None
    return ["quest", "-d", index, "-m", "1000000", "-s", "none", "-w", "bool", "-f", "default,wildcard,pure_not", asked]


def measured(command, folder):
    """CPU and wall seconds, peak memory in MB, and the files found."""
    with tempfile.TemporaryFile() as output:
        start = time.monotonic()
        process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.DEVNULL)
        _, _, usage = os.wait4(process.pid, 0)
        wall = time.monotonic() - start
        output.seek(0)
        found = output.read().decode(errors="surrogateescape").splitlines()
    return usage.ru_utime + usage.ru_stime, wall, usage.ru_maxrss / 1024, found


def best(command, folder, rounds):
    runs = [measured(command, folder) for _ in range(rounds)]
    return min(run[0] for run in runs), min(run[1] for run in runs), max(run[2] for run in runs), runs[0][3]


def plain_texts(folder):
    """The names and texts of files that Python can judge."""
    for root, folders, files in os.walk(folder):
        folders[:] = [name for name in folders if not name.startswith(".")]
        for name in files:
            path = os.path.join(root, name)
            if name.startswith(".") or os.path.islink(path):
                continue
            with open(path, "rb") as file:
                contents = file.read()
            beginning = contents[:1024].lstrip().lower()
            if b"\0" in contents or b"\xC2\xAD" in contents or beginning.startswith((b"<", b"%pdf")):
                continue
            if re.search(r"\.(html?|xml|xhtml|svg|xsl|rss|opf|sgml)$", name):
                continue
            try:
                yield "./" + os.path.relpath(path, folder), contents.decode("utf-8-sig")
            except UnicodeDecodeError:
                continue


def judge(folder, found):
    """Says where Python decides otherwise; `found` has each query with its test and the files found for it."""
    judged = 0
    for name, text in plain_texts(folder):
        judged += 1
        for query, test, names in found:
            if test(text) != (name in names):
                print(f"Python differs: {query}: {name}", file=sys.stderr)
    print(f"{len(found)} queries judged by Python over {judged} files", file=sys.stderr)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder")
    parser.add_argument("tools", nargs="+", metavar="NAME=TOOL")
    parser.add_argument("--xapian")
    parser.add_argument("--judge", action="store_true")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--threads", default="1")
    parser.add_argument("--only", default="")
    own = sys.argv[1:sys.argv.index("--")] if "--" in sys.argv else sys.argv[1:]
    options = parser.parse_args(own)
    extra = sys.argv[len(own) + 2:]
    tools = [(name, os.path.abspath(path)) for name, path in (tool.split("=", 1) for tool in options.tools)]
    index = options.xapian and os.path.abspath(options.xapian)
    names = [name for name, _ in tools] + ["ripgrep", "ugrep"] + (["Xapian"] if index else [])
    print("| query | files | " + " | ".join(names) + " |")
    print("|---|---|" + "---|" * len(names))
    judged = []
    for query, flags, ripgrep, ugrep, test in QUERIES:
        if options.only not in query:
            continue
        commands = [[path, "search", *(extra if i else []), *flags, "-l", "-j", options.threads, query, "."]
                    for i, (_, path) in enumerate(tools)]
        commands += [ripgrep and [*ripgrep, "-j", options.threads, "."], ugrep and [*ugrep, "-J", options.threads, "."]]
        commands += [quest(index, query)] if index else []
        cells = []
        lists = []
        for i, command in enumerate(commands):
            if not command:
                cells.append("")
                continue
            cpu, wall, memory, found = best(command, options.folder, options.rounds)
            cells.append(f"{cpu:.2f} / {wall:.2f} / {memory:.0f}")
            if i < len(tools):
                lists.append(found)
            elif command[0] == "quest":
                cells[-1] += f" ({sum(line.startswith('./') for line in found)})"
        for (name, _), found in zip(tools[1:], lists[1:]):
            if found != lists[0]:
                print(f"{name} differs: {query[:40]}: {sorted(set(found) ^ set(lists[0]))[:5]}", file=sys.stderr)
        if test:
            judged.append((query, test, set(lists[-1])))
        print(f"| `{query[:40]}` {' '.join(flags)} | {len(lists[-1])} | " + " | ".join(cells) + " |", flush=True)
    if options.judge:
        judge(options.folder, judged)


if __name__ == "__main__":
    main()
