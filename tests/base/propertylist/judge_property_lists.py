#!/usr/bin/env python3
"""Python's plistlib judges ours: what it writes we read, what we write it reads, and plain lists come out byte by byte.

The only argument is the program that converts a property list from standard input to "binary" or "xml".
"""
import datetime
import plistlib
import random
import subprocess
import sys

FORMATS = {"binary": plistlib.FMT_BINARY, "xml": plistlib.FMT_XML}


def text(chance):
    letters = "abc <&>\"'\n\tüß€\U0001F600" if chance.random() < 0.5 else "plain text"
    return "".join(chance.choice(letters) for _ in range(chance.choice([0, 1, 5, 14, 15, 16, 300])))


def value(chance, depth):
    kinds = ["text", "number", "real", "data", "date", "truth"] + ["array", "dictionary"] * 2 * (depth > 0)
    kind = chance.choice(kinds)
    if kind == "text":
        return text(chance)
    if kind == "number":
        bits = chance.choice([1, 7, 8, 15, 16, 31, 32, 62, 63, 64])
        number = chance.getrandbits(bits)
        return number if bits == 64 or chance.random() < 0.5 else -number
    if kind == "real":
        return chance.choice([0.1, -1.5, 1e300, 5e-324, float("inf"), float("-inf"), chance.uniform(-1e6, 1e6)])
    if kind == "data":
        return chance.randbytes(chance.choice([0, 1, 14, 15, 100, 300]))
    if kind == "date":
        return datetime.datetime(1, 1, 1) + datetime.timedelta(seconds=chance.randrange(315_000_000_000))
    if kind == "truth":
        return chance.random() < 0.5
    count = chance.choice([0, 1, 3, 20, 300 if depth == 4 else 5])
    if kind == "array":
        return [value(chance, depth - 1) for _ in range(count)]
    return {text(chance): value(chance, depth - 1) for _ in range(count)}


def has_truth(tree):
    if isinstance(tree, dict):
        return any(map(has_truth, tree.values()))
    return any(map(has_truth, tree)) if isinstance(tree, list) else isinstance(tree, bool)


def main():
    chance = random.Random(1)
    identical = 0
    for number in range(40):
        tree = [value(chance, 4) for _ in range(8)]
        for source, source_format in FORMATS.items():
            theirs = plistlib.dumps(tree, fmt=source_format)
            for target, target_format in FORMATS.items():
                done = subprocess.run([sys.argv[1], target], input=theirs, capture_output=True, check=False)
                assert done.returncode == 0, (number, source, target, tree)
                read = plistlib.loads(done.stdout, fmt=target_format)
                assert read == tree, (number, source, target, read, tree)
                # They write equal booleans once, we each for itself.
                if target == "xml" or not has_truth(tree):
                    identical += 1
                    assert done.stdout == plistlib.dumps(tree, fmt=target_format), (number, source, target)
    assert identical >= 80
    print(f"80 files converted to both forms, {identical} of 160 compared byte by byte")


if __name__ == "__main__":
    main()
