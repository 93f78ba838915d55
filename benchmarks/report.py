#!/usr/bin/env python3
"""One table of what the benchmarks measure: each operation beside its best peer on the same input, in one run.

Usage: report.py FOLDER [--only TEXT] [--time SECONDS]

FOLDER holds the benchmark programs: `cmake --build --preset release --target benchmark-report` builds and runs it all.
The ratio is the peer's time by ours: above 1 we are faster. Rates count the bytes of our input (UTF-16 for text), also where
a peer reads UTF-8. The last column is what the machine does at most, reading or copying so many bytes.
"""
import argparse
import json
import pathlib
import re
import subprocess
import sys

KB, MB = 1 << 10, 1 << 20

MADE_UP = [f"english/{KB}", f"english/{64 * KB}", f"mixed/{64 * KB}", f"russian/{64 * KB}", f"english/{8 * MB}"]
SIZES = [KB, 64 * KB, 8 * MB]
BLOCKS = [f"{size}/0" for size in (KB, 4 * KB, 64 * KB)]
REAL = [f"manual/{KB}", *(f"{text}/{64 * KB}" for text in ("manual", "changelog", "manual-de", "manual-ru", "manual-ja")),
        f"manual/{8 * MB}"]
TEXTS = MADE_UP + REAL
UTF = [f"english/{KB}", *(f"{text}/{64 * KB}" for text in ("english", "german", "russian", "chinese", "mixed")),
       f"english/{8 * MB}", f"russian/{8 * MB}"]
WORDS = [f"mixed/{KB}", *(f"{text}/{64 * KB}" for text in ("mixed", "english", "russian", "japanese")), f"mixed/{8 * MB}"]
QUERIED = [f"licence/{size}" for size in (KB, 64 * KB, 8 * MB)] + [f"{text}/{64 * KB}" for text in
                                                                   ("english", "mixed", "manual", "changelog")]
OTHER_MANUALS = [f"manual-{language}/{64 * KB}" for language in ("de", "ru", "ja")]

# Program, operation, our benchmark, those of the peers, inputs, the machine's limit. An input stands for `*`.
ROWS = [
    ("search", "exact search, absent phrase", "exact_absent/velan/*",
     ["exact_absent/pcre2/*", "exact_absent/hyperscan/*", "exact_absent/stringzilla/*", "exact_absent/icu/*"], TEXTS, "read"),
    ("search", "exact search, every hit", "exact_every_hit/velan/*",
     ["exact_every_hit/pcre2/*", "exact_every_hit/hyperscan/*", "exact_every_hit/stringzilla/*", "exact_every_hit/icu/*"],
     TEXTS, "read"),
    ("search", "search ignoring case, absent phrase", "no_case_absent/velan/*",
     ["no_case_absent/pcre2/*", "no_case_absent/hyperscan/*"], TEXTS, "read"),
    ("search", "search ignoring case, every hit", "no_case_every_hit/velan/*",
     ["no_case_every_hit/pcre2/*", "no_case_every_hit/hyperscan/*"], TEXTS, "read"),
    ("search", "search ignoring diacritics, absent phrase", "no_diacritics_absent/velan/*",
     ["no_diacritics_absent/table_loop/*"], TEXTS, "read"),
    ("search", "find one unit", "find_unit/velan/*", ["find_unit/std/*"], TEXTS[:2], "read"),
    ("search", "count one unit", "count_unit/velan/*", ["count_unit/std/*"], TEXTS[:2], "read"),
    ("search", "find one of five units", "one_of/velan/*", ["one_of/std/*", "one_of/stringzilla/*"], MADE_UP, "read"),
    ("search", "find one of a set", "one_of_set/velan/*", ["one_of_set/bitmap_loop/*"], MADE_UP, "read"),
    ("search", "count members of a set", "count_set/velan/*", ["count_set/bitmap_loop/*"], TEXTS, "read"),
    ("search", "fold to a copy", "fold/velan/*", ["fold/table_loop/*"], TEXTS, "copy"),
    ("search", "compare ignoring case, the same", "compare_no_case_same/velan/*", ["compare/memcmp/*"], TEXTS, "read"),
    ("search", "compare ignoring case, the other case", "compare_no_case_other/velan/*",
     ["compare_no_case_other/table_loop/*"], TEXTS, "read"),
    ("search", "compare members of a set", "compare_letters/velan/*", ["compare_letters/bitmap_loop/*"], TEXTS, "read"),
    ("encoding", "UTF-8 to UTF-16", "to_utf16/velan/*", ["to_utf16/icu/*", "to_utf16/iconv/*"], UTF, "copy"),
    ("encoding", "UTF-16 to UTF-8", "to_utf8/velan/*", ["to_utf8/icu/*", "to_utf8/iconv/*"], UTF, "copy"),
    *(("search", f"query, {name.replace('_', ' ')}, every hit", f"query_{name}/velan/*", [f"query_{name}/pcre2/*"],
       QUERIED + (OTHER_MANUALS if name in ("frequent_word", "prefix") else []), "read")
      for name in ("word", "word_no_case", "frequent_word", "prefix", "infix", "suffix", "set", "mixed", "phrase",
                   "wildcard_phrase", "three_terms")),
    *(("search", f"query, {name}{case.replace('_', ' ')}, every hit", f"{key}{case}/velan/*",
       [f"{key}{case}/hyperscan/*", f"{key}{case}/memmem/*"], QUERIED, "read")
      for key, name in (("three_terms_or", "three terms by or"), ("three_terms_and", "three terms by and"),
                        ("three_terms_near", "three terms by near"), ("thousand_terms_or", "a thousand terms by or"))
      for case in ("", "_no_case")),
    ("words", "word index", "index/velan/*", ["index/plain_loop/*", "index/icu/*"], WORDS, "read"),
    ("words", "word index in upper case, beside the plain one", "index_upper/velan/*", ["index/velan/*"], WORDS, "copy"),
    ("words", "walk the words of an index", "walk/velan/*", ["walk/bitmap_loop/*"], WORDS, "read"),
    *(("wildcard", f"wildcards over words, {name}", "BM_Filter/*", ["BM_Filter_RE2/*", "BM_Filter_PCRE2/*"], [number], "")
      for number, name in enumerate(("prefix", "infix", "suffix", "set", "mixed"))),
    ("keyed", "keyed look-up, last of /1, absent /2", "BM_LookUpKeyed/*",
     ["BM_LookUpPlainly/*", "BM_LookUpFlexBuffers/*", "BM_LookUpMessagePack/*"], ["16/1", "1024/1", "1024/2"], ""),
    ("keyed", "keyed look-up in an index, last of /1, absent /2", "BM_LookUpIndexed/*",
     ["BM_LookUpPlainly/*", "BM_LookUpFlexBuffers/*", "BM_LookUpMessagePack/*"], ["16/1", "1024/1", "1024/2"], ""),
    ("storage", "append blocks", "BM_AppendVelan/*",
     ["BM_AppendRaw/*", "BM_AppendLevelDB/*", "BM_AppendLMDB/*", "BM_AppendSQLite/*"], BLOCKS, "copy"),
    ("storage", "read and verify blocks", "BM_ReadVelan/*", ["BM_ReadLevelDB/*", "BM_ReadLMDB/*", "BM_ReadSQLite/*"],
     BLOCKS, "copy"),
    ("storage", "open, read and verify blocks", "BM_OpenAndReadVelan/*",
     ["BM_OpenAndReadLevelDB/*", "BM_OpenAndReadLMDB/*", "BM_OpenAndReadSQLite/*"], BLOCKS, "copy"),
    ("compression", "deflate, level 1", "BM_Deflate/*", ["BM_DeflateZlib/*", "BM_DeflateLibdeflate/*", "BM_DeflateISAL/*"],
     [4 * KB, 64 * KB, 8 * MB], "read"),
    ("compression", "inflate", "BM_Inflate/*", ["BM_InflateZlib/*", "BM_InflateLibdeflate/*", "BM_InflateISAL/*"],
     [4 * KB, 64 * KB, 8 * MB], "copy"),
    ("checksums", "CRC-32", "BM_Crc32Bytes/*", ["BM_Crc32ISAL/*", "BM_Crc32Libdeflate/*", "BM_Crc32Zlib/*"],
     [16, 60, 256, 4 * KB, 8 * MB], "read"),
    ("encryption", "AES-256 decrypt", "BM_Decrypt/*", ["BM_DecryptOpenSSL/*"], [64, KB, 64 * KB], "copy"),
    ("wildcard", "wildcard over 20,000 words", "filter/velan/*",
     ["filter/by_hand/*", "filter/re2/*", "filter/pcre2/*"], ["prefix", "infix", "suffix", "set", "mixed"], ""),
    ("wildcard", "similar words among 20,000", "similar/velan/*", ["similar/subsequence/*"], ["each", "at_least_0.75"], ""),
    ("url", "add percent escapes in UTF-8, English /0, Russian /1", "BM_EncodeUTF8/*",
     ["BM_EncodeCurl/*", "BM_EncodeUriparser/*"], ["64/0", "65536/0", "65536/1"], ""),
    ("url", "replace percent escapes in UTF-8, English /0, Russian /1", "BM_DecodeUTF8/*",
     ["BM_DecodeCurl/*", "BM_DecodeUriparser/*"], ["64/0", "65536/0", "65536/1"], ""),
]


def names_of(row):
    _, _, ours, peers, inputs, _ = row
    for name in [ours, *peers]:
        for given in inputs:
            yield name.replace("*", str(given))


def run(program, names, seconds):
    """The measurements of a program by name; none where it is not built."""
    if not program.exists() or not names:
        return {}
    names = "|".join(re.escape(name).replace(r"\-", "-") for name in sorted(set(names)))  # as its own syntax has it
    pattern = f"^({names})(/real_time|/iterations:.*)?$"
    command = [program, f"--benchmark_filter={pattern}", f"--benchmark_min_time={seconds}", "--benchmark_format=json"]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode:
        sys.exit(f"{program}: {done.stderr}")
    measured = {}
    for one in json.loads(done.stdout)["benchmarks"]:
        if "error_occurred" in one:
            print(f"{one['name']}: {one['error_message']}", file=sys.stderr)
            continue
        measured[re.sub(r"/(real_time|iterations:.*)$", "", one["name"])] = one
    return measured


def time_of(one):
    return one["cpu_time"] / {"ns": 1, "us": 1e-3, "ms": 1e-6, "s": 1e-9}[one["time_unit"]]


def rate(one):
    if "bytes_per_second" in one:
        return f"{one['bytes_per_second'] / 1e9:.3g} GB/s"
    if "items_per_second" in one:
        return f"{one['items_per_second'] / 1e6:.3g} M/s"
    return f"{one['cpu_time']:.3g} {one['time_unit']}"


def peer_of(name):
    """Benchmarks are called BM_Peer/input or operation/peer/input."""
    return re.sub("^BM_|/.*", "", name) if name.startswith("BM_") else name.split("/")[1]


def size_of(given):
    number = re.search(r"\d{4,}|\d+$", str(given))
    value = int(number.group()) if number else 0
    shown = f"{value // MB} MB" if value >= MB else f"{value // KB} KB" if value >= KB and value % KB == 0 else ""
    return str(given).replace(number.group(), shown) if shown else str(given)


def limit_of(kind, given, machine):
    """The machine's rate at the size that is nearest to the input's."""
    number = re.search(r"\d{4,}", str(given))
    sizes = [KB, 64 * KB, 8 * MB]
    wanted = int(number.group()) if number else 64 * KB
    nearest = min(sizes, key=lambda size: max(size, wanted) / min(size, wanted))
    one = machine.get(f"BM_{kind.capitalize()}/{nearest}")
    return rate(one) if one else ""


def lines(rows, folder, seconds):
    machine = run(folder / "machine_benchmark", [f"BM_{k}/{s}" for k in ("Read", "Copy") for s in SIZES], seconds)
    measured = {}
    for program, operation, ours, peers, inputs, limit in rows:
        if program not in measured:
            names = [name for row in rows if row[0] == program for name in names_of(row)]
            measured[program] = run(folder / f"{program}_benchmark", names, seconds)
            if not measured[program]:
                print(f"No {program}_benchmark: its rows are left out", file=sys.stderr)
        for given in inputs:
            mine = measured[program].get(ours.replace("*", str(given)))
            if not mine:
                continue
            others = [(measured[program][name], name) for name in (peer.replace("*", str(given)) for peer in peers)
                      if name in measured[program]]
            best, name = min(others, key=lambda other: time_of(other[0]), default=(None, ""))
            ratio = f"{time_of(best) / time_of(mine):.2f}" if best else ""
            peer = f"{peer_of(name)} {rate(best)}" if best else ""
            yield (f"| {operation} | {size_of(given)} | {rate(mine)} | {peer} | {ratio} | "
                   f"{limit_of(limit, given, machine) if limit else ''} |")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--only", default="", metavar="TEXT", help="operations or programs whose name holds it")
    parser.add_argument("--time", type=float, default=0.05, metavar="SECONDS", help="the least of a measurement")
    given = parser.parse_args()
    rows = [row for row in ROWS if given.only in f"{row[0]} {row[1]}"]
    print("| operation | input | ours | best peer | ratio | machine |\n|---|---|---|---|---|---|")
    for line in lines(rows, given.folder, given.time):
        print(line, flush=True)


main()
