#!/usr/bin/env python3
"""What the commands that change files do to files of every kind, when they fail, and when several run at once.

Argument: the companion.
"""
import os
import pathlib
import signal
import stat
import subprocess
import sys
import tempfile
import time

TOOL = sys.argv[1]


def run(*arguments, text=b"", limit=None):
    def prepare():
        if limit is not None:
            import resource
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    done = subprocess.run([TOOL, *(a if isinstance(a, bytes) else str(a) for a in arguments)], input=text, capture_output=True, check=False,
                          preexec_fn=prepare)
    return done.returncode, done.stdout, done.stderr.decode(errors="replace")


def state(path):
    """Everything about a file that a command must not change behind its owner's back."""
    status = os.lstat(path)
    regular = stat.S_ISREG(status.st_mode)
    return stat.S_IFMT(status.st_mode), status.st_rdev, path.read_bytes() if regular else None


COMMANDS = [
    ("keyed", "set", "FILE", 1, "x"), ("keyed", "remove", "FILE", 1), ("keyed", "load", "FILE"),
    ("blocks", "append", "FILE"), ("blocks", "delete", "FILE", 0),
]


def check_obstacles(folder):
    """No command touches what is no regular file or may not be written, and each names the reason."""
    (folder / "folder").mkdir()
    os.mkfifo(folder / "pipe")
    (folder / "dangling").symlink_to("nowhere")
    kinds = {"folder": "folder", "pipe": "pipe", "dangling": "link", "pipe/x": "should be a folder"}
    before = {path: state(path) for path in folder.iterdir()}
    for name, reason in kinds.items():
        for command in COMMANDS:
            status, _, errors = run(*[folder / name if word == "FILE" else word for word in command], text=b"[]")
            assert status == 2 and reason in errors, (name, command, status, errors)
    assert {path: state(path) for path in folder.iterdir()} == before
    status, _, errors = run("keyed", "set", os.fsencode(folder) + b"/\xff", 1, "x")
    assert status == 2 and "no valid text" in errors, errors


def check_foreign_files(folder):
    """What is no block file stays what it is."""
    for name, contents in {"disk.img": bytes(1 << 20), "note.txt": b"1A, left of the door", "empty": b""}.items():
        (folder / name).write_bytes(contents)
        assert run("blocks", "append", folder / name, text=b"")[0] == 2
        assert (folder / name).read_bytes() == contents
        if contents:
            assert run("blocks", "append", folder / name, text=b"text")[0] == 2
            assert (folder / name).read_bytes() == contents, name
    assert run("blocks", "append", folder / "new", text=b"")[0] == 2 and not (folder / "new").exists()


def check_keyed_files_in_parallel(folder):
    path = folder / "counters"
    runs = [subprocess.Popen([TOOL, "keyed", "set", path, str(i), "x"]) for i in range(40)]
    assert [each.wait() for each in runs] == [0] * 40
    assert b"40 records" in run("keyed", "check", path)[1]


def check_new_block_files(folder):
    """Compaction, repair: no more permissions than the source, nothing left of a failure, nothing lost silently."""
    path = folder / "blocks"
    offsets = [int(run("blocks", "append", path, "-c", text=bytes([65 + i]) * 3000)[1]) for i in range(20)]
    path.chmod(0o600)
    assert run("blocks", "compact", path, "-o", folder / "compacted")[0] == 0
    assert (folder / "compacted").read_bytes() == path.read_bytes(), "compressed blocks stay so"
    assert run("blocks", "repair", path, "-o", folder / "repaired")[0] == 0
    assert [stat.S_IMODE(os.stat(folder / name).st_mode) for name in ("compacted", "repaired")] == [0o600] * 2
    files = sorted(os.listdir(folder))
    for command in ("compact", "repair"):
        status, _, errors = run("blocks", command, path, "-o", folder / "too-large", limit=200)
        assert status == 2 and "too large" in errors, errors
        assert run("blocks", command, path, "-o", folder / "repaired")[2].endswith("there is a file already\n")
    assert sorted(os.listdir(folder)) == files
    assert run("blocks", "get", path, offsets[1], "--limit", 2999)[0] == 2
    assert run("blocks", "get", path, offsets[1], "--limit", 3000)[:2] == (0, b"B" * 3000)
    nested = int(run("blocks", "append", path, path)[1]) + 16
    assert run("blocks", "delete", path, nested)[0] == 1, "a block inside a block is none"
    damaged = bytearray(path.read_bytes())
    damaged[offsets[7]] ^= 1
    path.write_bytes(damaged)
    assert run("blocks", "compact", path, "-o", folder / "strict")[0] == 2
    status, output, _ = run("blocks", "compact", path, "-o", folder / "lenient", "--skip-errors")
    assert status == 2 and b"20 blocks, 0 deleted, 1 damaged" in output, output
    assert run("blocks", "verify", folder / "lenient")[0] == 0 and not (folder / "strict").exists()


def check_interruption(folder):
    path = folder / "large"
    path.write_bytes(b"\x31\x41\x59\x26\0\0\0\1\0\0\0\0" * 2500000)  # claims without end, slow to look through
    child = subprocess.Popen([TOOL, "blocks", "repair", path, "-o", folder / "never"], stderr=subprocess.DEVNULL)
    while child.poll() is None and len(list(folder.glob("never*"))) == 0:
        time.sleep(0.001)
    child.send_signal(signal.SIGINT)
    assert child.wait() == -signal.SIGINT
    assert not list(folder.glob("never*")), "nothing is left of it"


def main():
    for check in (check_obstacles, check_foreign_files, check_keyed_files_in_parallel, check_new_block_files,
                  check_interruption):
        with tempfile.TemporaryDirectory() as name:
            os.chmod(name, 0o755)
            check(pathlib.Path(name))


if __name__ == "__main__":
    main()
