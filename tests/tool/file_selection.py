#!/usr/bin/env python3
"""Which files the tool reads. Called like tool_test.py."""

import os
import subprocess
import unittest

from tool_test import TOOL, InFolder  # takes the arguments


class Files(InFolder):
    def files(self, *arguments, **options):
        status, output, errors = self.velan("search", "--files", *arguments, **options)
        return output.replace("./", "").split(), status, errors

    def test_ignore_patterns(self):
        """Each row as version control decides it."""
        paths = "a.log b/a.log b/c/x.txt b/x.txt d1 d2/d1 q]/[w e!/#f".split()
        for path in paths:
            self.write(path, "x")
        cases = [
            ("*.log", "a.log b/a.log"), ("/*.log", "a.log"), ("b/*.log", "b/a.log"), ("c", "b/c/x.txt"),
            ("b/*", "b/a.log b/c/x.txt b/x.txt"), ("b/**/x.txt", "b/c/x.txt b/x.txt"), ("**/c/**", "b/c/x.txt"),
            ("b/**\n!b/x.txt", "b/a.log b/c/x.txt"), ("b/\n!b/x.txt", "b/a.log b/c/x.txt b/x.txt"),
            ("d1/", ""), ("d1", "d1 d2/d1"), ("/d1", "d1"), ("d?/d1", "d2/d1"), ("?1", "d1 d2/d1"),
            ("a.log \r\n#d1", "a.log b/a.log"), ("a.log\\ ", ""), ("\\#f", "e!/#f"), ("*]", "q]/[w"),
            ("[[]w", "q]/[w"), ("q[]]", "q]/[w"), ("[a-c].log", "a.log b/a.log"), ("[!a].log", ""), ("[a", ""),
            ("d[[:digit:]]", "d1 d2/d1"), ("b/c/../x.txt", ""), ("b**/x.txt", "b/x.txt"), ("*\n!d1", set(paths) - {"d1"}),
        ]
        for content, ignored in cases:
            self.write(".gitignore", content)
            expected = set(paths) - set(ignored.split() if isinstance(ignored, str) else ignored)
            self.assertEqual(set(self.files(".")[0]), expected, content)
            self.assertEqual(len(self.files("--no-ignore", ".")[0]), len(paths))

    def test_ignore_files_of_other_folders(self):
        for path in ("top.x", "repo/a.x", "repo/b.x", "repo/sub/a.x", "repo/sub/c.x", "repo/inner/a.x"):
            self.write(path, "x")
        os.makedirs(os.path.join(self.folder, "repo/.git"))
        os.makedirs(os.path.join(self.folder, "repo/inner/.git"))
        self.write(".gitignore", "b.x")
        self.write("repo/.gitignore", "a.x\nc.x")
        self.write("repo/sub/.gitignore", "!c.x")
        self.write("repo/sub/.ignore", "!a.x")
        self.assertEqual(self.files("."), (["repo/b.x", "repo/inner/a.x", "repo/sub/a.x", "repo/sub/c.x", "top.x"], 0, ""))
        self.assertEqual(self.files("repo/sub")[0], ["repo/sub/a.x", "repo/sub/c.x"])
        self.assertEqual(self.files("repo/a.x")[0], ["repo/a.x"])
        self.write("repo/sub/.gitignore", "")
        self.assertEqual(self.files("repo/sub")[0], ["repo/sub/a.x"])

    def test_choices(self):
        for path, size in (("a.md", 1), ("b.txt", 1025), ("d/a.md", 1), ("d/e/c.htm", 1), ("list", 0)):
            self.write(path, "x" * size)
        self.write("list", "a.md\nb.txt\n\nabsent\n")
        self.write("nul", "a.md\0d")
        cases = [
            (["-g", "*.md", "."], "a.md d/a.md"), (["-g", "d/*.md", "."], "d/a.md"), (["-g", "!*.md", "-g!list", "."], "b.txt d/e/c.htm nul"),
            (["-g", "!d", "-g", "*.md", "b.txt", "."], "b.txt a.md"), (["-t", "md", "-t", "html", "."], "a.md d/a.md d/e/c.htm"),
            (["-t", "md", "-g", "!/a.md", "."], "d/a.md"), (["--max-filesize", "1K", "-t", "txt", "-t", "md", "."], "a.md d/a.md"),
            (["--max-filesize=1025", "-t", "txt", "."], "b.txt"), (["--files-from", "list"], "a.md b.txt absent"),
            (["--files-from", "list", "-g", "*.md"], "a.md"),
        ]
        for arguments, expected in cases:
            self.assertEqual(self.files(*arguments), (expected.split(), 0, ""), arguments)
        self.assertEqual(self.velan("search", "--files", "-0", "--files-from", "-", stdin=b"nul\0d\0")[1],
                         "nul\0d/a.md\0d/e/c.htm\0")
        self.assertEqual(self.velan("search", "-l", "x", "--files-from", "list")[1:],
                         ("a.md\n", "velan: absent: No such file or directory\n"))
        self.assertEqual(self.velan("words", "-t", "md", ".")[1], "2\tx\n")
        self.assertIn("html: *.htm, *.html", self.velan("search", "--type-list")[1])
        for wrong in (["-t", "nonsense"], ["--max-filesize", "1X"], ["--max-filesize", "99999999999G"]):
            self.assertEqual(self.velan("search", *wrong, "x")[0], 2)

    def test_links(self):
        self.write("a/x", "x")
        os.symlink("../a", os.path.join(self.folder, "a/loop"))
        os.symlink("nowhere", os.path.join(self.folder, "a/dangling"))
        os.symlink("a/x", os.path.join(self.folder, "link"))
        self.assertEqual(self.files("."), (["a/x"], 0, ""))
        names, status, errors = self.files("-L", "--one-file-system", ".")
        self.assertEqual((names, status), (["a/x", "link"], 2))
        self.assertRegex(errors, "a/dangling: No such file.*\n.*a/loop: the link leads to a folder that it lies in")

    def test_output_is_not_searched(self):
        self.write("a", "key")
        with open(os.path.join(self.folder, "out"), "wb") as out:
            out.write(b"key")
            out.flush()
            for paths, status in ((["."], 0), (["a", "out"], 2)):
                self.assertEqual(subprocess.run([TOOL, "search", "-l", "key", *paths], cwd=self.folder, stdout=out,
                                                stderr=subprocess.DEVNULL, check=False).returncode, status)
        with open(os.path.join(self.folder, "out"), "rb") as out:
            self.assertEqual(out.read(), b"key./a\na\n")


if __name__ == "__main__":
    unittest.main()
