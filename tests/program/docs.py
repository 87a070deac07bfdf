"""Checks the documents: docs.py LOAMSHOW SOURCE-DIRECTORY DOCUMENT...

Relative links of all documents lead to files, and their #anchors to headings. In each DOCUMENT, a command of a "console"
block that begins with "./loam run" prints the lines after it, up to a line "..."; trailing blanks are ignored."""
import os
import pathlib
import re
import subprocess
import sys

loamshow = sys.argv[1]
source = pathlib.Path(sys.argv[2]).resolve()


def text(page):
    """A page without its blocks of code."""
    return re.sub("^```.*?^```", "", page.read_text(), flags=re.MULTILINE | re.DOTALL)


pages = [*source.glob("*.md"), *source.glob("docs/*.md"), *source.glob("samples/*.md")]
links = [(page, link) for page in pages for link in re.findall(r"\]\(([^)]*)\)", re.sub("`.*?`", "", text(page)))]
for page, link in links:
    file, _, anchor = link.partition("#")
    target = page.parent / file if file else page
    assert target.exists(), f"{page}: broken link: {link}"
    titles = re.findall("^#+ (.*)", text(target), re.MULTILINE) if anchor else []
    anchors = [re.sub(r"[^\w\- ]", "", title).lower().replace(" ", "-") for title in titles]
    assert not anchor or anchor in anchors, f"{page}: broken link: {link}"
print(f"{len(pages)} pages, {len(links)} links")

environment = dict(os.environ, LOAM_STATE=str(source / "samples/sample-switch.json"))
for document in sys.argv[3:]:
    blocks = re.findall(r"```console\n\$ (\./loam run .*)\n((?:.*\n)*?)```\n", (source / document).read_text())
    assert blocks, f"{document} shows no command"
    for command, shown in blocks:
        out = subprocess.run(command.replace("./loam run", loamshow), shell=True, cwd=source, env=environment,
                             stdout=subprocess.PIPE, check=True, text=True).stdout
        actual = re.sub(" +$", "", out, flags=re.MULTILINE)
        same = actual.startswith(shown[:-4]) if shown.endswith("\n...\n") else actual == shown
        assert same, f"{document}: {command} prints\n{actual}"
    print(f"{document}: {len(blocks)} commands")
