#!/usr/bin/env python3
"""Do the folders of velan/ depend on each other in one direction only, and do other libraries stay in platform/?

Reads the #include lines below the source folder given as the only argument; prints each offender, fails if there is one.
A folder may have inner rooms, one level deep. A room that is named below has a place of its own in the order: it must
not depend on the folder around it, and another folder may be allowed to depend on the room alone.
"""
import pathlib
import re
import sys

BELOW = {
    "base": [],
    "platform": ["base"],
    "platform/files": ["base"],
    "platform/lemmas": ["base", "platform", "platform/files"],
    "text": ["base", "platform"],
    "text/digest": ["base", "platform", "text"],
    "wildcard": ["base", "platform", "text"],
    "query": ["base", "platform", "text", "wildcard"],
    "query/words": ["base", "platform", "text"],
    "keyed": ["base", "platform", "text"],
    "storage": ["base", "platform", "text"],
    "markup": ["base", "platform", "text"],
    "url": ["base", "platform", "text"],
    "language": ["base", "platform", "text", "query/words"],
    "containers": ["base", "platform", "text"],
}
STANDARD = re.compile(r"^[a-z_0-9]+(\.h)?$")
ZLIB = {"zlib.h"}
SYSTEM = re.compile(r"^(sys/|unistd\.h|fcntl\.h|dirent\.h|pthread\.h|immintrin\.h)")
NO_CALLS = {"immintrin.h", "sys/single_threaded.h"}  # instructions, and a variable of the C library
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def place_of(folders):
    """The room or the folder that a path below velan/ lies in, given as its folders."""
    room = "/".join(folders[:2])
    return room if room in BELOW else folders[0]


def may_depend(place, other):
    """A folder's own rooms are part of it; whoever may depend on a folder may depend on its rooms."""
    folder = other.split("/")[0]
    return other == place or folder == place or other in BELOW[place] or folder in BELOW[place]


def problems_of(path, root):
    folders = path.relative_to(root / "velan").parts[:-1]
    if len(folders) > 2 or folders[0] not in BELOW:
        yield f"{path.relative_to(root)}: no place for it in the order of the folders"
        return
    folder = folders[0]
    place = place_of(folders)
    public = path.suffix == ".h" and not path.stem.endswith("Internal")
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        quote, target = match.groups()
        where = f"{path.relative_to(root)}:{number}: {target}"
        if target.startswith("velan/"):
            other = place_of(target.split("/")[1:-1])
            if not may_depend(place, other):
                yield f"{where}: {place} must not depend on {other}"
            if public and target.endswith("Internal.h"):
                yield f"{where}: an installed header includes one that is not"
        elif quote == '"':
            yield f"{where}: own headers are included by their path from the root"
        elif folder != "platform":
            own_zlib = folder == "storage" and target in ZLIB and not public
            if SYSTEM.match(target) and target not in NO_CALLS:
                yield f"{where}: calls to the system belong in platform/"
            elif not (STANDARD.match(target) or target in NO_CALLS or own_zlib) or target in ZLIB and not own_zlib:
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
