#!/usr/bin/env python3
"""How often does `velan language` name the language of a paragraph? Prints a table by language, in Markdown.

    apt-get download manpages-de manpages-fr debian-handbook gnome-user-docs libreoffice-help-de ...
    for package in *.deb; do dpkg -x $package unpacked; done
    benchmarks/language_accuracy.py build/test/tools/velan unpacked > table.md

The texts are the translated manual pages, handbooks and desktop help below the folders given after the tool. A paragraph
has 60 to 200 words; shorter ones that follow each other are joined. Paragraphs that stand in an English original, or
under two languages, are not translated and left out. Half of the paragraphs, chosen by a checksum, are kept back: the
lists of stop words may be tuned on the others (--tuning) only.
"""
import argparse
import collections
import gzip
import html
import json
import pathlib
import re
import subprocess
import tempfile
import zlib

KEYS = {
    "C": "EN", "en": "EN", "en-US": "EN", "en_GB": "EN", "de-DE": "DE", "fr-FR": "FR", "es-ES": "ES", "it-IT": "IT",
    "pt_BR": "PT", "pt-BR": "PT", "nb": "NO", "nb-NO": "NO", "nn": None, "ca-valencia": "CA", "sr@latin": None,
    "nl-NL": "NL", "pl-PL": "PL", "ro-RO": "RO", "sv-SE": "SV", "tr-TR": "TR", "da-DK": "DA", "cs-CZ": "CS",
    "hr-HR": "HR", "id-ID": "ID", "fi-FI": "FI",
}
LATIN = set("EN DE FR ES IT PT NL SV DA NO FI IS PL CS SK SL HR HU RO TR ET LV LT CA ID".split())
WORDS = 60, 200


def key_of(folder):
    """The key of a folder that is named by its language; nothing for a language that has no list."""
    key = KEYS.get(folder, folder.upper())
    return key if key in LATIN else None


def man_paragraphs(text):
    """The running text of a manual page: without requests, font changes and tables."""
    paragraph, in_table = [], False
    for line in text.splitlines() + ["."]:
        if line.startswith((".", "'")):
            if line.startswith((".TS", ".nf", ".EX", ".in +")):
                in_table = True
            elif line.startswith((".TE", ".fi", ".EE", ".in")):
                in_table = False
            words = re.match(r"[.'](B|I|BR|RB|IR|RI|BI|IB|SM|SB|Xr|Nm|Fl|Ar|Pa|Em|Sy|Dv|Cm|Li|Op)\b\s*(.*)", line)
            if words and paragraph:
                paragraph.append(words.group(2).replace('"', ""))
                continue
            if re.match(r"\.(\\\"|ie?\b|el\b|ad\b|na\b|hy\b)", line):
                continue
            yield " ".join(paragraph)
            paragraph = []
        elif not line.strip():
            yield " ".join(paragraph)
            paragraph = []
        elif not in_table:
            line = re.sub(r"\\f(\[[^\]]*\]|\([A-Z]{2}|.)|\\s[-+]?\d|\\[&|/,^c%]|\\\".*", "", line)
            line = re.sub(r"\\\((lq|rq|aq|dq|oq|cq|Fo|Fc|en|em)|\\\[[^\]]*\]|\\\*\([a-zA-Z]{2}", " ", line)
            paragraph.append(line.replace("\\-", "-").replace("\\e", "\\").replace("\\ ", " ").replace("\\'", "'"))


def markup_paragraphs(text):
    """The contents of the paragraphs of HTML and of help pages."""
    text = re.sub(r"(?s)<(script|style|pre|code|screen|cmd)\b.*?</\1>|<!--.*?-->", " ", text)
    for match in re.finditer(r"(?s)<(p|para)\b[^>]*>(.*?)</\1>", text):
        yield html.unescape(re.sub(r"<[^>]*>", " ", match.group(2)))


def documents(root):
    """Pairs of a language folder and the paragraphs of one document in it."""
    for path in sorted(root.rglob("*")):
        parts = (root.name, *path.relative_to(root).parts)
        if path.is_symlink() or not path.is_file():
            continue
        if "man" in parts[:-1]:
            after = parts[parts.index("man") + 1]
            language = "en" if re.fullmatch(r"man\d\w*", after) else after.split(".")[0]
            data = gzip.open(path).read() if path.suffix == ".gz" else path.read_bytes()
            yield language, man_paragraphs(data.decode("utf-8", "replace"))
        elif path.suffix in (".html", ".htm", ".page", ".docbook", ".xml"):
            if "help" in parts:
                language = parts[parts.index("help") + 1]
            elif "html" in parts[:-2]:
                language = parts[parts.index("html") + 1]
            elif match := re.search(r"\.([a-z]{2}(-[a-z]{2})?)\.html$", path.name):
                language = match.group(1)
            else:
                continue
            yield language, markup_paragraphs(path.read_text(encoding="utf-8", errors="replace"))


def joined(paragraphs, is_original):
    """Paragraphs of the wanted length."""
    collected = []
    for paragraph in paragraphs:
        words = paragraph.split()
        if not words or is_original(" ".join(words)):
            continue
        collected += words
        if len(collected) >= WORDS[0]:
            if len(collected) <= WORDS[1]:
                yield " ".join(collected)
            collected = []


def collect(roots):
    texts = [(language, list(paragraphs)) for root in roots for language, paragraphs in documents(root)]
    languages_of = collections.defaultdict(set)
    for language, paragraphs in texts:
        for paragraph in paragraphs:
            languages_of[" ".join(paragraph.split())].add(key_of(language) or language)
    found = collections.defaultdict(dict)
    for language, paragraphs in texts:
        key = key_of(language)
        if key is None:
            continue
        original = lambda p: key != "EN" and len(languages_of[p]) > 1
        for paragraph in joined(paragraphs, original):
            found[key][paragraph] = None
    return found


def is_kept_back(paragraph):
    return zlib.crc32(paragraph.encode()) % 2 == 0


def answers(tool, paragraphs):
    """What the tool says of each paragraph, in order."""
    with tempfile.TemporaryDirectory() as folder:
        for number, paragraph in enumerate(paragraphs):
            (pathlib.Path(folder) / f"{number:06d}").write_text(paragraph + "\n", encoding="utf-8")
        run = subprocess.run([tool, "language", "--json", folder], capture_output=True, text=True, check=False)
        return [json.loads(line) for line in run.stdout.splitlines()]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tool")
    parser.add_argument("folder", nargs="+", type=pathlib.Path)
    parser.add_argument("--tuning", action="store_true", help="the other half of the paragraphs")
    parser.add_argument("--most", type=int, default=2000, help="paragraphs a language")
    parser.add_argument("--wrong", action="store_true", help="list the wrong answers instead")
    arguments = parser.parse_args()

    print("| language | paragraphs | right of decided | undecided | mostly taken for | CLD2: right of decided | CLD2: undecided |")
    print("|---|---:|---:|---:|---|---:|---:|")
    total = collections.Counter()
    for key, paragraphs in sorted(collect(arguments.folder).items()):
        chosen = [p for p in paragraphs if is_kept_back(p) != arguments.tuning]
        chosen = sorted(chosen, key=lambda p: zlib.crc32(p.encode()[::-1]))[: arguments.most]
        if not chosen:
            continue
        counts, taken_for = collections.Counter(), collections.Counter()
        for paragraph, answer in zip(chosen, answers(arguments.tool, chosen)):
            mine = answer["language"]
            code = {"NO": ("nb", "no")}.get(key, (key.lower(),))
            counts["undecided"] += mine is None
            counts["right"] += mine == key
            counts["cld2 undecided"] += answer["dominant"] is None
            counts["cld2 right"] += answer["dominant"] in code
            if mine not in (None, key):
                taken_for[mine] += 1
                if arguments.wrong:
                    print(key, mine, paragraph)
        print(row(key, len(chosen), counts, " ".join(f"{k} {n}" for k, n in taken_for.most_common(3))))
        total.update(counts, paragraphs=len(chosen))
    print(row("all", total["paragraphs"], total, ""))


def row(key, paragraphs, counts, taken_for):
    def share(part, whole):
        return f"{100 * part / whole:.1f} %" if whole else "-"

    decided = paragraphs - counts["undecided"]
    cld2 = paragraphs - counts["cld2 undecided"]
    return (f"| {key} | {paragraphs} | {share(counts['right'], decided)} | {share(counts['undecided'], paragraphs)} | "
            f"{taken_for} | {share(counts['cld2 right'], cld2)} | {share(counts['cld2 undecided'], paragraphs)} |")


if __name__ == "__main__":
    main()
