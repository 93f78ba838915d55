#!/usr/bin/env python3
"""Searches a folder with the tool, and with ripgrep and ugrep where they can do something near it.

Usage: search_tree.py FOLDER NAME=TOOL [NAME=TOOL ...] [--rounds N] [--threads N] [--only TEXT] [-- SEARCH OPTIONS]

Prints a Markdown table: CPU seconds / wall seconds / peak memory in MB of the best of N rounds, and how many files are
found. Several tools, such as one from before a change, must find the same files; plain words are also looked for by
Python, in files that are UTF-8 and no pages.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
import time

RG = ["rg", "--sort", "path", "-uu", "-il"]
UGREP = ["ugrep", "-r", "-I", "-il"]
BOOL = [*UGREP, "--files", "--bool"]
WORD = r"[^\W_]"

# The query, options of the tool, what comes near it elsewhere (None: nothing), and the words that Python looks for.
QUERIES = [
    ("kernel", [], [*RG, "-w", "kernel"], [*UGREP, "-w", "kernel"], ["kernel"]),
    ("zyzzyvaq", [], [*RG, "-w", "zyzzyvaq"], [*UGREP, "-w", "zyzzyvaq"], ["zyzzyvaq"]),
    ("the", [], [*RG, "-w", "the"], [*UGREP, "-w", "the"], ["the"]),
    ("allocation", ["-s"], ["rg", "--sort", "path", "-uu", "-lw", "allocation"], ["ugrep", "-r", "-I", "-lw", "allocation"],
     None),
    ("kernel AND memory", [], None, [*BOOL, "kernel memory"], ["kernel", "memory"]),
    ("kernel AND memory AND allocation", [], None, [*BOOL, "kernel memory allocation"],
     ["kernel", "memory", "allocation"]),
    ("zyzzyvaq AND the", [], None, [*BOOL, "zyzzyvaq the"], ["zyzzyvaq", "the"]),
    ("mutex OR semaphore", [], [*RG, "-w", "mutex|semaphore"], [*BOOL, "mutex|semaphore"], None),
    ("(mutex OR semaphore) AND deadlock", [], None, [*BOOL, "(mutex|semaphore) deadlock"], None),
    ("kernel AND NOT memory", [], None, [*BOOL, "kernel -memory"], None),
    ("NOT kernel", [], ["rg", "--sort", "path", "-uu", "-iw", "--files-without-match", "kernel"],
     [*BOOL, "-kernel"], None),
    ("mutex XOR semaphore", [], None, [*BOOL, "(mutex -semaphore)|(semaphore -mutex)"], None),
    ("kernel AND (memory NEAR/5 allocation)", [], None, [*BOOL, "kernel memory allocation"], None),
    ("memory NEAR/5 allocation", [], None, [*BOOL, "memory allocation"], None),
    ("memory NEAR/50 allocation", [], None, [*BOOL, "memory allocation"], None),
    ("signal BEFORE/3 handler", [], None, [*BOOL, "signal handler"], None),
    ("file NEAR/3 NOT descriptor", [], None, [*BOOL, "file -descriptor"], None),
    ('"memory allocation"', [], [*RG, r"\bmemory\s+allocation\b"], [*UGREP, r"\bmemory\s+allocation\b"], None),
    ('"of the file system"', [], [*RG, r"\bof\s+the\s+file\s+system\b"], [*UGREP, r"\bof\s+the\s+file\s+system\b"],
     None),
    ("alloc*", [], [*RG, r"\balloc"], [*UGREP, r"\balloc"], None),
    ("*alloc*", [], [*RG, "alloc"], [*UGREP, "alloc"], None),
    ("*ocation", [], [*RG, r"ocation\b"], [*UGREP, r"ocation\b"], None),
    ("s?maph*re", [], [*RG, r"\bs\wmaph\w*re\b"], [*UGREP, r"\bs\wmaph\w*re\b"], None),
    ("col[ou]r[sz]", [], [*RG, r"\bcol[ou]r[sz]\b"], [*UGREP, r"\bcol[ou]r[sz]\b"], None),
    ("[mn]utex", [], [*RG, r"\b[mn]utex\b"], [*UGREP, r"\b[mn]utex\b"], None),
    ("semaphroe", ["--fuzzy"], None, [*UGREP, "-Z2", "-w", "semaphroe"], None),
    ("память", [], [*RG, "-w", "память"], [*UGREP, "-w", "память"], ["память"]),
    ("память AND файл", [], None, [*BOOL, "память файл"], ["память", "файл"]),
    ("ファイル", [], [*RG, "ファイル"], [*UGREP, "ファイル"], None),
    ("ファイル AND システム", [], None, [*BOOL, "ファイル システム"], None),
    ("fichier", ["-d"], [*RG, "-w", "fichier"], [*UGREP, "-w", "fichier"], None),
    ("systeme AND memoire", ["-d"], None, [*BOOL, "syst[eè]me m[eé]moire"], None),
    (" OR ".join(f"qzword{i}" for i in range(1000)), [],
     [*RG, "-w", "|".join(f"qzword{i}" for i in range(1000))], [*UGREP, "-w", "|".join(f"qzword{i}" for i in range(1000))],
     None),
]


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
    """`found` has the files found for each list of words."""
    for name, text in plain_texts(folder):
        for words, names in found:
            holds = all(re.search(rf"(?<!{WORD}){word}(?!{WORD})", text, re.IGNORECASE) for word in words)
            if holds != (name in names):
                print(f"Python differs: {' '.join(words)}: {name}", file=sys.stderr)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder")
    parser.add_argument("tools", nargs="+", metavar="NAME=TOOL")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--threads", default="1")
    parser.add_argument("--only", default="")
    own = sys.argv[1:sys.argv.index("--")] if "--" in sys.argv else sys.argv[1:]
    options = parser.parse_args(own)
    extra = sys.argv[len(own) + 2:]
    tools = [(name, os.path.abspath(path)) for name, path in (tool.split("=", 1) for tool in options.tools)]
    names = [name for name, _ in tools] + ["ripgrep", "ugrep"]
    print("| query | files | " + " | ".join(names) + " |")
    print("|---|---|" + "---|" * len(names))
    judged = []
    for query, flags, ripgrep, ugrep, words in QUERIES:
        if options.only not in query:
            continue
        commands = [[path, "search", *(extra if i else []), *flags, "-l", "-j", options.threads, query, "."]
                    for i, (_, path) in enumerate(tools)]
        commands += [ripgrep and [*ripgrep, "-j", options.threads, "."], ugrep and [*ugrep, "-J", options.threads, "."]]
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
        for (name, _), found in zip(tools[1:], lists[1:]):
            if found != lists[0]:
                print(f"{name} differs: {query[:40]}: {sorted(set(found) ^ set(lists[0]))[:5]}", file=sys.stderr)
        if words:
            judged.append((words, set(lists[-1])))
        print(f"| `{query[:40]}` {' '.join(flags)} | {len(lists[-1])} | " + " | ".join(cells) + " |", flush=True)
    judge(options.folder, judged)


if __name__ == "__main__":
    main()
