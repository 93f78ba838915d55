#!/usr/bin/env python3
"""A reader of keyed data in a few lines, written after docs/keyed-data-format.md alone, reads a file of the library.

Arguments: the program that writes the file, and where.
"""
import plistlib
import struct
import subprocess
import sys

FIXED = {b"VLbl": "?", b"VLun": ">I", b"VLsi": ">i", b"VLul": ">Q", b"VLsl": ">q", b"VLfl": ">f", b"VLdb": ">d",
         b"VLda": ">d"}
VARIABLE = {b"VLst": bytes.decode, b"VLdt": bytes, b"VLpl": plistlib.loads}


def records(data):
    while data:
        marker, key, length = data[:4], data[4:8], int.from_bytes(data[8:12], "big")
        if marker in FIXED:
            yield marker, key, struct.unpack_from(FIXED[marker], data, 8)[0]
            data = data[16:]
        else:
            yield marker, key, VARIABLE[marker](data[16:16 + length])
            data = data[16 + length:]


def pairs(listed):
    for (marker, key, name), (_, following, value) in zip(listed, listed[1:]):
        if (marker, key, following) == (b"VLst", b"_key", b"_val"):
            yield name, value


def main():
    subprocess.run(sys.argv[1:3], check=True)
    with open(sys.argv[2], "rb") as file:
        listed = list(records(file.read()))
    numbered = {int.from_bytes(key, "big"): value for _, key, value in listed}
    expected = [True, 4000000000, -3, 2**64 - 1, -5, 0.5, 7.25, 86400.0, "text", b"bytes", [1, "two"]]
    assert [numbered[key] for key in range(1, 12)] == expected, numbered
    assert [value for _, key, value in listed if key == b"LIST"] == ["one", "zwölf"]
    assert dict(pairs(listed)) == {"pair": [True], "number": 300}
    print(f"{len(listed)} records read")


if __name__ == "__main__":
    main()
