#!/usr/bin/env python3
"""Maps the documented behaviours and the result codes to the tests that show them.

    behaviours.py ROOT BIN            compares docs/tested-behaviours.md with the sources
    behaviours.py ROOT BIN --update   writes docs/tested-behaviours.md

ROOT is the source tree and BIN the directory of the test programs. A behaviour is an anchor
(<a id="NAME"></a>) in docs/site-list-format.md. A result is OPERATION=CODE, one for each code of
each line of tests/docs/result_codes.txt. A test names what it shows in comments directly before it:

    // Shows: NAME, OPERATION=CODE
    TEST(Suite, Name) {
"""

import pathlib
import re
import subprocess
import sys

FORMAT = "docs/site-list-format.md"
PAGE = "docs/tested-behaviours.md"
CODES = "tests/docs/result_codes.txt"
HEADER = "sitehlp/sites_helper.h"
CODE_HEADER = "sitehlp/result_codes.h"
LIMIT_CODE = -104  # AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, which is not in CODE_HEADER

faults = []


def statements(text):
    """Yields section, anchor and words of each statement; reports what should have an anchor."""
    text = re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)
    section = ""
    is_head = True
    # A list item or a paragraph may continue on the next lines. A table row may not.
    for block in re.split(r"\n(?=[|#\n-])", text):
        block = " ".join(block.split())
        if block.startswith("## "):
            section = block[3:]
        if block.startswith("|-"):
            is_head = False
        elif not block.startswith("|"):
            is_head = True
        is_row = block.startswith("|") and not block.startswith("|-") and not is_head
        parts = re.split(r'<a id="([^"]+)"></a>', block)
        if len(parts) == 1 and (is_row or block.startswith("- ")):
            faults.append(f"{FORMAT}: no anchor in: {block}")
        for name, words in zip(parts[1::2], parts[2::2]):
            if is_row:
                words = words.split(" |")[0]
                first = parts[0].strip("| ").split(" | ")[0]
                words = f"{first}: {words}" if first else words
            yield section, name, words.strip()


def read_behaviours(root):
    behaviours = {}
    for section, name, words in statements((root / FORMAT).read_text()):
        if name in behaviours:
            faults.append(f"{FORMAT}: the anchor {name} occurs twice")
        behaviours[name] = (section, words)
    return behaviours


def read_operations(root):
    """The codes of each operation, in the order of the table."""
    operations = {}
    for line in (root / CODES).read_text().splitlines():
        if line and not line.startswith("#"):
            name, *codes = line.split()
            operations[name] = [int(code) for code in codes]
    header = (root / HEADER).read_text()
    declared = {}
    for comment, name in re.findall(r"((?: *//.*\n)+)(?:  (?:static )?)int (\w+)\(", header):
        literals = {int(code) for code in re.findall(r"(?<![\w.`=-])-\d+(?!\d)", comment)}
        declared.setdefault(name, set()).update(literals)
    constants = re.findall(r"constexpr int (\w+) = (-?\d+);", (root / CODE_HEADER).read_text())
    known = {int(code) for _, code in constants} | {LIMIT_CODE}
    for name in re.findall(r"^  (?:static )?int (\w+)\(", header, re.M):
        if name not in operations:
            faults.append(f"{CODES}: no line for {name}, which {HEADER} declares")
    for name, codes in operations.items():
        if name not in declared:
            faults.append(f"{CODES}: {HEADER} does not declare {name}")
        for code in sorted((declared.get(name, set()) & known) - set(codes)):
            faults.append(f"{CODES}: {name} has no {code}, which {HEADER} states")
        for code in sorted(set(codes) - known):
            faults.append(f"{CODES}: {name} has {code}, which {CODE_HEADER} does not have")
    for name, code in constants:
        if not any(int(code) in codes for codes in operations.values()):
            faults.append(f"{CODES}: no operation returns {name} ({code})")
    return operations


def read_marks(root):
    """Yields file, program, suite and name of each marked test, and the names in its marks."""
    for path in sorted((root / "tests").glob("*/*_test.cpp")):
        file = path.relative_to(root).as_posix()
        shown = []
        for number, line in enumerate(path.read_text().splitlines(), 1):
            mark = re.match(r"// Shows: (.*)", line)
            test = re.match(r"TEST(?:_F|_P)?\((\w+), (\w+)\)", line)
            if mark:
                shown += [name.strip() for name in mark.group(1).rstrip(",").split(",")]
            elif test:
                if shown:
                    yield file, "test_" + path.parent.name, test.group(1), test.group(2), shown
                shown = []
            elif shown:
                faults.append(f"{file}:{number}: a mark without a test after it")
                shown = []
        if shown:
            faults.append(f"{file}: a mark after the last test")


def listed_tests(program):
    """Returns the tests of a program, without the parameter part of their names."""
    if not program.exists():
        faults.append(f"{program} does not exist")
        return set()
    command = [program, "--gtest_list_tests"]
    said = subprocess.run(command, capture_output=True, text=True, check=True)
    tests = set()
    suite = ""
    for line in said.stdout.splitlines():
        words = line.split("#")[0].strip()
        if line.startswith(" "):
            tests.add((suite, words.split("/")[0]))
        else:
            suite = words.rstrip(".").split("/")[-1]
    return tests


def page_of(behaviours, operations, tests):
    def names(key):
        return "<br>".join(f"`{test}`" for test in tests[key])

    lines = [
        "# Tested behaviours",
        "",
        "This page is generated. It names the tests of each statement of",
        "[the site list document](site-list-format.md) and of each result code.",
        "[Contributing](../CONTRIBUTING.md#tests) says how to update the tests and this page.",
    ]
    section = None
    for name, (where, words) in behaviours.items():
        if where != section:
            section = where
            lines += ["", f"## {section}", "", "| statement | tests |", "|---|---|"]
        words = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", words).replace("|", "\\|")
        lines.append(f"| [{name}](site-list-format.md#{name}): {words} | {names(name)} |")
    lines += ["", "## Result codes", "", "| operation | result | tests |", "|---|---|---|"]
    for operation, codes in operations.items():
        for code in codes:
            lines.append(f"| `{operation}` | {code} | {names(f'{operation}={code}')} |")
    return "\n".join(lines) + "\n"


def main():
    if len(sys.argv) not in (3, 4) or sys.argv[3:] not in ([], ["--update"]):
        sys.exit(__doc__)
    root, programs = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    behaviours = read_behaviours(root)
    operations = read_operations(root)
    tests = {name: [] for name in behaviours}
    tests.update({f"{name}={code}": [] for name, codes in operations.items() for code in codes})
    lists = {}
    for file, program, suite, test, shown in read_marks(root):
        if program not in lists:
            lists[program] = listed_tests(programs / program)
        if (suite, test) not in lists[program]:
            faults.append(f"{file}: {program} has no test {suite}.{test}")
        for name in shown:
            if name in tests:
                tests[name].append(f"{program}/{suite}.{test}")
            else:
                faults.append(f"{file}: {suite}.{test} shows {name}, which does not exist")
    for name, found in tests.items():
        if not found:
            faults.append(f"no test shows {name}")
    page = page_of(behaviours, operations, tests)
    if sys.argv[3:]:
        (root / PAGE).write_text(page)
    elif not faults and page != (root / PAGE).read_text():
        faults.append(f"{PAGE} is out of date; run {sys.argv[0]} {root} {programs} --update")
    if faults:
        sys.exit("\n".join(faults))


main()
