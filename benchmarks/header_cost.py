#!/usr/bin/env python3
"""What including costs: for each public header alone, and for all together, the compiler's user time (median) and the
lines it reads. Usage: header_cost.py [--compiler g++] [--runs 5] [--above SECONDS] [folder of the sources]"""
import argparse
import pathlib
import resource
import statistics
import subprocess
import sys


def user_time(command, text):
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    subprocess.run(command, input=text, text=True, check=True)
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("root", nargs="?", default=pathlib.Path(__file__).resolve().parent.parent, type=pathlib.Path)
    parser.add_argument("--compiler", default="g++")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--above", type=float, default=0, help="print only headers above so many seconds; fail if any")
    arguments = parser.parse_args()

    headers = sorted(str(path.relative_to(arguments.root)) for path in arguments.root.glob("velan/**/*.h")
                     if not path.name.endswith("Internal.h"))
    sources = {header: f'#include "{header}"\n' for header in headers}
    sources["all together"] = "".join(sources.values())
    command = [arguments.compiler, "-std=c++20", f"-I{arguments.root}", "-x", "c++", "-"]
    exceeded = False
    for name, text in sources.items():
        seconds = statistics.median(user_time(command + ["-fsyntax-only"], text) for _ in range(arguments.runs))
        lines = subprocess.run(command + ["-E", "-P"], input=text, text=True, capture_output=True).stdout.count("\n")
        if seconds >= arguments.above:
            exceeded = True
            print(f"{seconds:6.3f} s {lines:7} lines  {name}", flush=True)
    return 1 if arguments.above and exceeded else 0


if __name__ == "__main__":
    sys.exit(main())
