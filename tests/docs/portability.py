#!/usr/bin/env python3
"""Compares docs/portability.md with the sources.

    portability.py ROOT

Each row of the table "What differs between the systems" begins with a word in backquotes. The word
must be in the files of the row and in no other source of the libraries, the tool and the build.
Comments do not count. Each test that the page names must exist. The sources must not have words that
compile only on Linux.
"""

import pathlib
import re
import sys

PAGE = "docs/portability.md"
SECTION = "## What differs between the systems"
CODE = ("host", "sitehlp", "tools", "cmake")
C_SOURCES = (".h", ".cpp")
MACROS = r"sig(empty|fill|add|del)set|sigismember|hton[sl]|ntoh[sl]"
ONLY_LINUX = {
    # what is refused, where, and why
    re.compile(rf"::({MACROS})\b"): (("host", "sitehlp", "tools", "tests"), "a macro on macOS"),
    re.compile(r"\benviron\b"): (("host", "sitehlp"), "not there in a shared library of macOS"),
}

faults = []


def sources(root, folders):
    """Yields the name and the text, without comments, of each source in the folders."""
    for folder in folders:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in C_SOURCES:
                comment = r"//[^\n]*"
            elif path.suffix == ".cmake" or path.name == "CMakeLists.txt":
                comment = r"#[^\n]*"
            else:
                continue
            yield str(path.relative_to(root)), re.sub(comment, "", path.read_text())


def quoted(cell):
    return re.findall(r"`([^`]+)`", cell)


def rows(page):
    section = page.split(SECTION, 1)[-1].split("\n## ", 1)[0]
    table = [line for line in section.splitlines() if line.startswith("| `")]
    for line in table:
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        yield quoted(cells[0])[0], quoted(cells[1]), cells[-1]
    if not table:
        faults.append(f"{PAGE}: no table after {SECTION}")


def check_places(code, word, files):
    pattern = re.compile(rf"(?<!\w){re.escape(word)}(?!\w)")
    found = {name for name, text in code.items() if pattern.search(text)}
    for name in sorted(set(files) - found):
        faults.append(f"{PAGE}: {word} is not in {name}")
    for name in sorted(found - set(files)):
        faults.append(f"{name}: has {word}, but its row in {PAGE} does not name this file")


def exists(tests, root, name):
    if "." in name:
        suite, test = name.split(".")
        return re.search(rf"TEST\w*\(\s*{suite},\s*{test}\s*\)", tests)
    folder, test = name.split("/")
    listing = root / "tests" / folder / "CMakeLists.txt"
    return listing.exists() and re.search(rf"\b{test}\b", listing.read_text())


def main():
    root = pathlib.Path(sys.argv[1])
    page = (root / PAGE).read_text()
    tests = "\n".join(text for _, text in sources(root, ["tests"]))
    code = dict(sources(root, CODE))
    named = {word for word in quoted(page) if re.fullmatch(r"[A-Z]\w*\.[A-Z]\w*", word)}
    for word, files, shown_by in rows(page):
        check_places(code, word, files)
        if shown_by != "none" and not quoted(shown_by):
            faults.append(f"{PAGE}: the row of {word} names no test and does not say \"none\"")
        named.update(quoted(shown_by))
    for name in sorted(named):
        if not exists(tests, root, name):
            faults.append(f"{PAGE}: there is no test {name}")
    for pattern, (folders, reason) in ONLY_LINUX.items():
        for name, text in sources(root, folders):
            for match in pattern.finditer(text):
                faults.append(f"{name}: {match.group()} is {reason}")
    print("\n".join(faults) if faults else f"{PAGE} agrees with the sources")
    sys.exit(1 if faults else 0)


main()
