#!/usr/bin/env python3
"""Checks the documents: their examples, links and version numbers, and the syntax of the manual page.

The examples of a document run in one shell session, on a copy of the installed folder examples/ in which make_media.sh
has created the media. A document that uses "cd" starts in the folder above examples/, any other one inside it. In the
output of an example, a line "..." stands for any number of lines.
"""
import difflib
import os
import re
import shlex
import subprocess
import tempfile
from pathlib import Path

# Blocks of examples, in Markdown and in the manual page. A command continues after a final "\" or "|".
blockPattern = re.compile(r"(?ms)^(?:```console|\.EX)\n.*?(?:^(?:```|\.EE)$|\Z)")
examplePattern = re.compile(r"(?m)^\$ (?P<command>.*(?:(?<=[\\|])\n.*)*)\n(?P<output>(?:(?!\$ ).*\n)*)")
endOfOutput = "=== end of output ==="
complaints = []


def run(command, **options):
    return subprocess.run(["bash", "-c", command], text=True, stdout=subprocess.PIPE, **options).stdout


def outputsOf(commands, prefix):
    """Returns what each command prints, without those after a command that ends the shell."""
    start = ".." if any(re.search(r"\bcd ", command) for command in commands) else "."
    session = f"cp -r {prefix}/share/doc/stashkeep/examples . && cd examples && sh make_media.sh && cd {start}\n"
    for command in commands:
        session += f"eval {shlex.quote(command)}\necho; echo '{endOfOutput}'\n"
    with tempfile.TemporaryDirectory() as home:
        environment = {"HOME": home, "PATH": f"{prefix}/bin:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
        output = run(session, cwd=home, env=environment, stdin=subprocess.DEVNULL, stderr=subprocess.STDOUT)
    return output.split(f"\n{endOfOutput}\n")[:-1]


def abridge(printed, shown):
    """Replaces printed lines by "..." as in the shown ones. The result is these if they match, or else is similar."""
    def similarity(start, lines):
        found = "\n".join(printed[start:start + len(lines)])
        return difflib.SequenceMatcher(None, found, "\n".join(lines), autojunk=False).ratio()

    gaps = [i for i, line in enumerate(shown) if line == "..."]
    end = gaps[0] if gaps else len(printed)
    result = printed[:end]
    for gap, nextGap in zip(gaps, gaps[1:] + [len(shown)]):
        lines = shown[gap + 1:nextGap]
        starts = range(end, len(printed) - len(lines) + 1)
        if nextGap == len(shown):
            starts = starts[-1:]  # nothing follows these lines
        start = max(starts, key=lambda start: similarity(start, lines), default=end)
        end = start + len(lines)
        result += ["..."] + printed[start:end]
    return result + printed[end:]


def checkExamples(document, prefix):
    """Runs the examples. Complains with the difference between the document and what it would be with their output."""
    text = Path(document).read_text()
    if document.endswith(".1"):
        text = text.replace(r"\-", "-").replace(r"\e", "\\")
    blocks = blockPattern.finditer(text)
    examples = [example for block in blocks for example in examplePattern.finditer(text, *block.span())]
    outputs = outputsOf([example["command"] for example in examples], prefix)
    if len(outputs) < len(examples) or (not examples and document != "docs/windows.md"):
        complaints.append(f"{document}: of {len(examples)} examples, {len(outputs)} ran")
    renewed = text
    for example, output in reversed(list(zip(examples, outputs))):
        shown = example["output"].rstrip("\n").split("\n")
        printed = abridge(output.rstrip("\n").split("\n"), shown)
        if printed != shown:
            start, end = example.span("output")
            renewed = renewed[:start] + "\n".join(printed) + "\n" + renewed[end:]
    complaints.extend(difflib.unified_diff(text.split("\n"), renewed.split("\n"), document, "printed", lineterm=""))


def checkLinks(document, folder):
    """Checks that all files and headings that a document links to are installed in the folder."""
    for file, heading in re.findall(r"\]\((?!https?:)([^)#]*)#?([^)]*)\)", document.read_text()):
        target = folder / document.parent / file if file else document
        if not target.exists():
            complaints.append(f"{document}: {file} is not installed, or not under this name")
        elif heading:
            headings = re.findall(r"(?m)^#+ (.*)", target.read_text().lower())
            if heading not in [re.sub(r"[^\w -]", "", text).replace(" ", "-") for text in headings]:
                complaints.append(f"{document}: there is no heading {file}#{heading}")


def checkVersion(text, pattern):
    found = re.search(f"(?m){pattern}", text)
    if not found or found[1] != version:
        complaints.append(f"This is version {version}, but a document says: {found and found[0]}")


os.chdir(Path(__file__).parent.parent)
version = re.search(r"(?m)^project\(stashkeep VERSION (\S+)", Path("CMakeLists.txt").read_text())[1]
run("scripts/install.sh cmake g++ man-db ninja-build python3", check=True)
run("cmake --preset release && cmake --build --preset release", check=True)
with tempfile.TemporaryDirectory() as prefix:
    run(f"cmake --install out/release --prefix {prefix}", check=True)
    for document in ["README.md", "docs/formats.md", "docs/windows.md", "docs/stashkeep.1"]:
        checkExamples(document, prefix)
    folder = Path(prefix, "share/doc/stashkeep")
    Path(folder, "README.md").unlink()  # no document may link to it: the ZIP calls it README.txt
    for document in [*Path().glob("*.md"), *Path("docs").glob("*.md")]:
        checkLinks(document, folder)
    checkVersion(run(f"{prefix}/bin/stashkeep"), r"^Zarnis stashkeep v(.*)")
checkVersion(Path("docs/stashkeep.1").read_text(), r'^\.TH .* "stashkeep (\S+)"')
checkVersion(Path("CHANGELOG.md").read_text(), r"^## (?!Unreleased$)(.*)")
checkVersion(Path("debian/changelog").read_text(), r"^stashkeep \((.*)\)")
complaints += run(f"grep -nE 'stashkeep-[0-9.]+-' *.md docs/*.md | grep -vF stashkeep-{version}-").splitlines()
complaints += run("LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l docs/stashkeep.1 2>&1 >/dev/null").splitlines()
if complaints:
    raise SystemExit("\n".join(complaints))
print("The examples, links and versions of the documents are right.")
