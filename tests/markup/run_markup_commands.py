#!/usr/bin/env python3
"""The commands for markup, as their users see them; Python's table of entities judges ours. The argument is the tool."""
import html.entities
import pathlib
import subprocess
import sys
import tempfile

PAGE = """<!DOCTYPE html><html><head><meta charset=koi8-r><title>A &lt;title&gt;</title>
<script>var a = "<p>no text</p>";</script><style>p {}</style></head><body><!-- no text -->
<h1>Head<b>line</b></h1><p>One   two\n three&nbsp;four<br>five&shy;six</p>
<table><tr><td>1</td><td>2 <i>3</i></td></tr><tr><td>4</td></tr></table>
<pre>
 kept  as
\tit is</pre><![CDATA[<raw>&amp;]]><a href="x?a=1&amp;b">\u0416</a></body></html>"""
TEXT = ("A <title>\n\nHeadline\n\nOne two three four\nfivesix\n\n1\t2 3\n4\n\n kept  as\n\tit is\n\n"
        "<raw>&amp;\u0416\n")


def velan(*arguments, text=""):
    done = subprocess.run([sys.argv[1], *arguments], input=text.encode(), capture_output=True, check=False)
    return done.returncode, done.stdout.decode()


def check_entities():
    absent = {"cedil", "fnof"}
    names = html.entities.name2codepoint
    text = "".join(f"&{name};x\n" for name in names)
    expected = "".join(f"&{name};x\n" if name in absent else f"{chr(code)}x\n" for name, code in names.items())
    assert velan("entities", "decode", text=text) == (0, expected)
    encoded = velan("entities", "encode", "--markup", text=expected)[1]
    known = [name for name in names if name not in absent]
    assert encoded == "".join(f"&amp;{name};x\n" if name in absent else f"&{name};x\n" for name in names)
    assert len(known) == 250
    kept = velan("entities", "decode", "--keep-markup", text="&lt;&eacute;&#38;")
    assert kept == (0, "&lt;é&#38;"), kept


def check_pages(folder):
    path = folder / "page.html"
    path.write_bytes(PAGE.encode("koi8-r", "xmlcharrefreplace"))
    assert velan("text", path) == (0, TEXT), velan("text", path)
    assert velan("charset", path) == (0, f"{path}\tKOI8-R\tdeclared as koi8-r\n")
    kinds = [line.split("\t")[:2] for line in velan("tags", path)[1].splitlines()]
    assert kinds[:3] == [["tag", "DOCTYPE"], ["tag", "html"], ["tag", "head"]]
    assert ["comment", "-"] in kinds and ["section", "-"] in kinds and kinds.count(["tag", "script"]) == 1
    assert velan("tags", "--attribute", "HREF", path) == (
        0, f"tag\ta\t{PAGE.index('<a ')}\t{len('<a href=') + len('x?a=1&amp;b') + 3}\tx?a=1&b\n")
    assert velan("tags", "--attribute", "src", path) == (1, "")
    assert velan("text", folder / "missing")[0] == 2


with tempfile.TemporaryDirectory() as name:
    check_entities()
    check_pages(pathlib.Path(name))
print("entities, text, tags and charset answer as expected")
