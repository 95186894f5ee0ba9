#!/usr/bin/env python3
"""Runs the commands of a guide and compares their output with the output that the guide shows.

  guide.py GUIDE --tool SITELIST --source DIR [--update]

A block ```sh that is followed by a block ```text is run, and the second block is its output. Each block
runs in the same directory and shell. A block ```sh without output must be in a part of the guide that
says "Not run by the tests" or "tests do not run".
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"```sh\n(?P<commands>.*?)```\n(?:\n```text\n(?P<output>.*?)```\n)?", re.DOTALL)
MARKER = "@END-OF-BLOCK@"


def run(blocks, tool, source):
    """The output of each block. All blocks run in one shell."""
    script = "".join(f"{block}\nprintf '%s\\n' '{MARKER}'\n" for block in blocks)
    with tempfile.TemporaryDirectory() as directory:
        environment = {"PATH": f"{tool.parent}:{os.environ['PATH']}", "SOURCE": str(source), "LC_ALL": "C.UTF-8",
                       "HOME": directory, "SITELIST_AGENT_DIR": f"{directory}/none"}
        done = subprocess.run(["/bin/sh"], input=script.encode(), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              cwd=directory, env=environment, check=False)
    return done.stdout.decode().split(f"{MARKER}\n")[:-1]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("guide", type=Path)
    parser.add_argument("--tool", required=True, type=lambda path: Path(path).resolve())
    parser.add_argument("--source", required=True, type=lambda path: Path(path).resolve())
    parser.add_argument("--update", action="store_true")
    arguments = parser.parse_args()
    text = arguments.guide.read_text()
    found = list(BLOCK.finditer(text))
    shown = [match for match in found if match["output"] is not None]
    outputs = run([match["commands"] for match in shown], arguments.tool, arguments.source)
    problems = []
    if not shown or len(outputs) != len(shown):
        problems.append(f"{len(outputs)} of {len(shown)} blocks were run")
    for match in found:
        before = text[:match.start()]
        chapter = before[before.rfind("\n## "):]
        if match["output"] is None and not re.search("[Nn]ot run by the tests|tests do not run", chapter):
            problems.append(f"neither output nor a note that it is not run:\n{match['commands']}")
    for match, output in zip(shown, outputs):
        if match["output"] != output:
            problems.append(f"{match['commands']}shown:\n{match['output']}printed:\n{output}")
    if arguments.update:
        for match, output in reversed(list(zip(shown, outputs))):
            text = text[:match.start("output")] + output + text[match.end("output"):]
        arguments.guide.write_text(text)
        return 0
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f"{len(shown)} blocks, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
