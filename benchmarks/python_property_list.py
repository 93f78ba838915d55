#!/usr/bin/env python3
"""Python's figures for the property lists that keyed_benchmark writes with VELAN_PROPERTY_LIST=path: path.binary, path.xml."""
import plistlib
import sys
import time


def best(action):
    times = []
    for _ in range(5):
        start = time.perf_counter()
        action()
        times.append(time.perf_counter() - start)
    return min(times) * 1000


for name, form in [("binary", plistlib.FMT_BINARY), ("xml", plistlib.FMT_XML)]:
    with open(f"{sys.argv[1]}.{name}", "rb") as file:
        data = file.read()
    tree = plistlib.loads(data)
    reading, writing = best(lambda: plistlib.loads(data)), best(lambda: plistlib.dumps(tree, fmt=form))
    print(f"{name}: {len(data)} bytes, read {reading:.1f} ms, write {writing:.1f} ms")
