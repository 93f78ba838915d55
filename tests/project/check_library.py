#!/usr/bin/env python3
"""What the shared library shows of itself: its exports, and nothing of the place where it was built.

Usage: check_library.py [--update] LIBRARY SOURCE_FOLDER BUILD_FOLDER

Exports are C names and what lies in the namespace velan, and only public headers mark something as exported. None of
the names in exports.txt, which are those that callers can write, may disappear: applications would no longer start. New
ones are no fault, so that a branch that adds an operation need not touch the list;
`cmake --build --preset test --target update-exports` writes it anew, in order and without parameters.
"""
import pathlib
import re
import subprocess
import sys

LIST = pathlib.Path(__file__).with_name("exports.txt")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def exported_symbols(library):
    lines = output("nm", "--dynamic", "--defined-only", library).splitlines()
    return {line.split()[2].split("@")[0]: line.split()[1] for line in lines}


def names_of(symbols, source):
    """What callers use of the symbols, without parameters and tags. Private members are no promise, and what is defined
    in headers is there or not as the compiler likes."""
    private, public = set(), set()
    for header in (source / "velan").rglob("*.h"):
        text = re.sub(r"//.*", "", header.read_text())
        hidden = re.findall(r"^ private:.*?(?=^ public:|^};)", text, re.MULTILINE | re.DOTALL)
        private.update(re.findall(r"(\w+)\(", "".join(hidden)))
        for part in hidden:
            text = text.replace(part, "")
        public.update(re.findall(r"\w+", text))
    strong = [symbol for symbol, kind in symbols.items() if kind not in "WVu" and not symbol.startswith("_ZT")]
    names = {re.sub(r"\[abi:\w+\]", "", name) for name in output("c++filt", "--no-params", *strong).splitlines()}
    names = {name for name in names if name.split("::")[-1] not in name.split("::")[-2:-1]}  # constructors
    return {name for name in names if name.split("::")[-1] not in private - public}


def faults_of_exports(library, source):
    symbols = exported_symbols(library)
    for symbol, kind in symbols.items():
        if symbol.startswith("_Z") and not re.match(r"_ZN?K?5velan|_ZNK?5velan|_ZT\w.*N5velan", symbol):
            yield f"exports {output('c++filt', symbol).strip()}"
        if kind == "u":
            yield f"exports {symbol} as unique, which keeps the library loaded"
    names = names_of(symbols, source)
    for name in LIST.read_text().split("\n"):
        if name and name not in names:
            yield f"no longer exports {name} (if that is meant, build the target update-exports)"
    for file in sorted((source / "velan").rglob("*")):
        if file.suffix in (".h", ".cpp") and (file.suffix == ".cpp" or file.name.endswith("Internal.h")):
            if re.search(r"^(?!#).*\bVELAN_EXPORT\b", file.read_text(), re.MULTILINE):
                yield f"{file} marks something as exported, but is not installed"


def faults_of_binary(library, folders):
    dynamic = output("readelf", "--dynamic", "--wide", library)
    if "GNU_RELRO" not in output("readelf", "--segments", "--wide", library) or "BIND_NOW" not in dynamic:
        yield "its tables of addresses stay writable: no full RELRO"
    content = pathlib.Path(library).read_bytes()
    for folder in folders:
        if str(folder).encode() in content:
            yield f"contains the path {folder}"


def main():
    arguments = sys.argv[1:]
    update = "--update" in arguments
    library, source, build = [argument for argument in arguments if argument != "--update"]
    if update:
        LIST.write_text("".join(f"{name}\n" for name in sorted(names_of(exported_symbols(library), pathlib.Path(source)))))
    faults = [*faults_of_exports(library, pathlib.Path(source)), *faults_of_binary(library, (source, build))]
    for fault in faults:
        print(f"{library} {fault}")
    sys.exit(1 if faults else 0)


main()
