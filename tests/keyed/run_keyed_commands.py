#!/usr/bin/env python3
"""The companion's commands for keyed data: what they print, how they exit, and that JSON gives back the same bytes.

Arguments: the companion, and a folder of files whose bytes must go through JSON unchanged.
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile


def run(*arguments, text=b""):
    done = subprocess.run([sys.argv[1], "keyed", *map(str, arguments)], input=text, capture_output=True, check=False)
    return done.returncode, done.stdout


def records_of(path):
    return [(r["marker"], r["key"], r["value"]) for r in json.loads(run("dump", path, "--json")[1])]


def check_editing(folder):
    path = folder / "a.keyed"
    values = [("CNTR", "41", "unsigned", 41), (7, '[1, {"a": "b\\u0000"}, 2.5]', "plist", [1, {"a": "b\0"}, 2.5]),
              (8, "aGVsbG8=", "data", "aGVsbG8="), (9, "-0.5", "date", -0.5), (10, '"-inf"', "double", "-inf"),
              (11, "true", "bool", True), (12, "zwölf \"x\"", "string", "zwölf \"x\"")]
    for key, text, kind, _ in values:
        assert run("set", path, key, text, "--type", kind)[0] == 0, key
    path.chmod(0o640)
    assert run("set", path, "CNTR", "42", "--type", "unsigned")[0] == 0
    assert run("set", path, "the title", "Report", "--pair")[0] == 0
    assert os.stat(path).st_mode & 0o777 == 0o640, "an edited file keeps its permissions"
    values[0] = ("CNTR", "42", "unsigned", 42)
    assert [(k, v) for _, k, v in records_of(path)][:7] == [(k, v) for k, _, _, v in values]
    assert run("get", path, "the title", "--pair") == (0, b"Report\n")
    assert run("get", path, 12) == (0, "zwölf \"x\"\n".encode())
    assert run("get", path, 12, "--type", "bool")[0] == 1
    assert [run("remove", path, 12)[0], run("remove", path, 12)[0]] == [0, 1]
    assert [run("remove", path, "the title", "--pair")[0] for _ in range(2)] == [0, 1]
    assert run("check", path) == (0, f"{path}: valid, 6 records\n".encode())


def check_trouble(folder):
    path = folder / "damaged.keyed"
    path.write_bytes(b"VLun\0\0\0\1" + bytes(8) + b"VLst\0\0\0\2\0\0\0\x09" + bytes(4) + b"12345678")
    status, text = run("check", path)
    assert status == 1 and b'offset 16: the "VLst" record is longer than the 24 bytes' in text, text
    before = path.read_bytes()
    for arguments in [("set", path, 1, "x"), ("remove", path, 1), ("get", path, "five5"), ("dump", folder / "missing"),
                      ("set", path, 1, "x", "--type", "none"), ("set", folder / "b", 1, "-1", "--type", "unsigned")]:
        assert run(*arguments)[0] == 2, arguments
    for text in [b"", b"{}", b"[1]", b'[{"marker":"VLun","key":1,"value":-1}]', b'[{"bytes":"*"}]', b"[" * 100000]:
        assert run("load", path, text=text)[0] == 2, text[:50]
    assert path.read_bytes() == before, "trouble changes nothing"
    return path


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        check_editing(folder)
        files = [check_trouble(folder), folder / "a.keyed", *pathlib.Path(sys.argv[2]).iterdir()]
        for file in files:
            assert run("load", folder / "copy", text=run("dump", file, "--json")[1])[0] == 0, file
            assert (folder / "copy").read_bytes() == file.read_bytes(), file
        assert sorted(os.listdir(folder)) == ["a.keyed", "copy", "damaged.keyed"], "nothing temporary stays"
    print(f"{len(files)} files went through JSON")


if __name__ == "__main__":
    main()
