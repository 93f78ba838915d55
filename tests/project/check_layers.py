#!/usr/bin/env python3
"""Do the folders of velan/ depend on each other in one direction only, and do other libraries stay in platform/?

Reads the #include lines below the source folder given as the only argument; prints each offender, fails if there is one.
"""
import pathlib
import re
import sys

BELOW = {
    "base": [],
    "platform": ["base"],
    "text": ["base", "platform"],
    "wildcard": ["base", "platform", "text"],
    "query": ["base", "platform", "text", "wildcard"],
    "keyed": ["base", "platform", "text"],
    "storage": ["base", "platform", "text"],
}
STANDARD = re.compile(r"^[a-z_0-9]+(\.h)?$")
ZLIB = {"zlib.h"}
SYSTEM = re.compile(r"^(sys/|unistd\.h|fcntl\.h|dirent\.h|pthread\.h|immintrin\.h)")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def problems_of(path, root):
    folder = path.relative_to(root / "velan").parts[0]
    public = path.suffix == ".h" and not path.stem.endswith("Internal")
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        quote, target = match.groups()
        where = f"{path.relative_to(root)}:{number}: {target}"
        if target.startswith("velan/"):
            other = target.split("/")[1]
            if other != folder and other not in BELOW[folder]:
                yield f"{where}: {folder} must not depend on {other}"
            if public and target.endswith("Internal.h"):
                yield f"{where}: an installed header includes one that is not"
        elif quote == '"':
            yield f"{where}: own headers are included by their path from the root"
        elif folder != "platform":
            own_zlib = folder == "storage" and target in ZLIB and not public
            if SYSTEM.match(target) and target != "immintrin.h":
                yield f"{where}: calls to the system belong in platform/"
            elif not (STANDARD.match(target) or own_zlib) or target in ZLIB and not own_zlib:
                yield f"{where}: other libraries belong in platform/"
        elif public and not STANDARD.match(target):
            yield f"{where}: an installed header includes another library's"


def main():
    root = pathlib.Path(sys.argv[1])
    files = sorted(p for p in (root / "velan").rglob("*") if p.suffix in (".h", ".cpp", ".c"))
    problems = [p for path in files for p in problems_of(path, root)]
    print("\n".join(problems) or f"{len(files)} files, no problem")
    return 1 if problems or not files else 0


if __name__ == "__main__":
    sys.exit(main())
