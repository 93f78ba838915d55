#!/usr/bin/python3
"""Makes a Xapian index of the text files below a folder, to be asked with quest (packages python3-xapian, xapian-tools).

Usage: xapian_index.py FOLDER INDEX

Each document is a file; its data is the path, as "./a/b". Words are indexed with their positions and without stemming.
Files that hold NUL are passed over; tags of pages are taken out, roughly.
"""

import os
import re
import sys

import xapian

PAGE = re.compile(rb"\s*<(!doctype html|html|\?xml)", re.IGNORECASE)


def texts(folder):
    for root, folders, files in os.walk(folder):
        folders.sort()
        for name in sorted(files):
            path = os.path.join(root, name)
            if os.path.islink(path):
                continue
            with open(path, "rb") as file:
                contents = file.read()
            if b"\0" in contents[:65536]:
                continue
            if PAGE.match(contents):
                contents = re.sub(rb"<[^>]*>", b" ", contents)
            yield "./" + os.path.relpath(path, folder), contents


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    index = xapian.WritableDatabase(sys.argv[2], xapian.DB_CREATE_OR_OVERWRITE)
    generator = xapian.TermGenerator()
    for path, contents in texts(sys.argv[1]):
        document = xapian.Document()
        document.set_data(os.fsencode(path))
        generator.set_document(document)
        generator.index_text(contents)
        index.add_document(document)
    index.commit()


if __name__ == "__main__":
    main()
