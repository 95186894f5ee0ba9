#!/usr/bin/env python3
"""Runs the tool on fixed documents in every format and compares everything that it prints.

  run.py --tool SITELIST GROUP...               the cases of these groups, against their folders
  run.py --tool SITELIST contract               schema, commands and exit statuses
  run.py --tool SITELIST statuses               a run for every exit status of every command
  run.py --tool SITELIST --update [GROUP...]    writes the folders anew

Each case has a folder, COMMAND/CASE/. The file cmd has its command line. A file for each format has
what is printed; it is missing if nothing is. The file err has the messages, which every format shares.
"""

import argparse
import difflib
import json
import os
import shlex
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import cases
import checks
import contract
import forms
import statuses
from world import World

HERE = Path(__file__).resolve().parent
SOURCE = HERE.parent.parent


def run_case(world, case, form):
    """Returns the output of the tool, its directory, and whether it changed files."""
    directory = world.copy(case.agent) if case.writes else world.dir
    before = world.files(directory) if case.writes else {}
    output = world.run(["--format", form, *case.arguments], case.stdin, directory)
    return output, directory, case.writes and world.files(directory) != before


def folder(case):
    command = max((name for name in cases.COMMANDS if f"{case.name}-".startswith(f"{name}-")), key=len)
    return HERE / command / (case.name[len(command) + 1:] or "plain")


def command_line(case):
    words = ["sitelist", *(os.fsdecode(word) for word in case.arguments)]
    return shlex.join(words).encode(errors="backslashreplace").decode() + "\n"


class Run:
    def __init__(self, world, tool, update):
        self.world = world
        self.validator = contract.validator(tool)
        self.check_line = contract.line_checker(tool)
        self.update = update
        self.problems = []

    def case(self, case):
        try:
            self.check(case)
        except forms.Wrong as wrong:
            self.problems.append(f"{case.name}: {wrong}")
        except Exception as error:  # the output cannot be read; the other cases continue
            self.problems.append(f"{case.name}: {error!r}")

    def check(self, case):
        texts = {}
        messages = set()
        for form in self.forms_of(case):
            output, directory, has_changed = run_case(self.world, case, form)
            out, err = (checks.normalised(case, text, directory) for text in (output.out, output.err))
            checks.check_output(case, form, output, out, err)
            if any((directory / "tmp").iterdir()) and case.writes:
                raise forms.Wrong("temporary files are left")
            if form == "json" and json.loads(output.out)["changed"] != has_changed:
                raise forms.Wrong(f"files were changed: {has_changed}, json says otherwise")
            texts[form] = out
            messages.add(err)
        if len(messages) != 1:
            raise forms.Wrong(f"the messages differ between formats: {messages}")
        texts["err"] = messages.pop()
        if "json" in texts:
            report = checks.check_json(case, texts["json"], texts["err"], self.validator)
            checks.check_others(case, report, texts, self.check_line)
        if "jsonl" not in case.forms:
            texts.pop("jsonl", None)
        texts["cmd"] = command_line(case)
        for kind, text in texts.items():
            self.golden(folder(case) / kind, text)

    @staticmethod
    def forms_of(case):
        """Every case with JSON also runs with jsonl. Only some cases store its output."""
        return (*case.forms, "jsonl") if "json" in case.forms and "jsonl" not in case.forms else case.forms

    def golden(self, path, text):
        if self.update:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(text.encode()) if text else path.unlink(missing_ok=True)
            return
        expected = path.read_bytes().decode() if path.exists() else ""
        if path.exists() and not expected:
            self.problems.append(f"{path.relative_to(HERE)}: an empty golden file")
        if text != expected:
            lines = difflib.unified_diff(expected.splitlines(), text.splitlines(), "stored", "now", lineterm="")
            shown = "\n".join(line[:200] for line in list(lines)[:60])
            self.problems.append(f"{path.relative_to(HERE)} differs from the output\n{shown}")


def find_stale(update):
    known = {folder(case) / kind for case in cases.ALL for kind in (*case.forms, "err", "cmd")}
    stale = [path for command in HERE.iterdir() if command.is_dir() and command.name != "__pycache__"
             for path in command.rglob("*") if path.is_file() and path not in known]
    if not update:
        return [f"{path.relative_to(HERE)}: no case has this golden file" for path in stale]
    for path in stale:
        path.unlink()
    return []


def run_groups(arguments, chosen):
    world = World(arguments.tool, SOURCE)
    try:
        before = world.snapshot()
        run = Run(world, arguments.tool, arguments.update)
        with ThreadPoolExecutor(2) as pool:
            list(pool.map(run.case, chosen))
        changed = sorted(name for name, _ in before.items() ^ world.snapshot().items())
        if changed:
            run.problems.append(f"these files or directories were changed, made or left: {changed}")
        return run.problems
    finally:
        world.remove()


def run_statuses(arguments):
    world = World(arguments.tool, SOURCE)
    try:
        return statuses.problems(world, arguments.interposer)
    finally:
        world.remove()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--tool", required=True, type=lambda path: Path(path).resolve())
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--interposer", type=os.path.abspath, help="the library of tests/cli/interposer.cpp")
    parser.add_argument("groups", nargs="*", choices=[*cases.GROUPS, "contract", "statuses", []])
    arguments = parser.parse_args()
    groups = arguments.groups or list(cases.GROUPS)
    chosen = [case for name in groups for case in cases.GROUPS.get(name, ())]
    problems = find_stale(arguments.update)
    if chosen:
        problems += run_groups(arguments, chosen)
    if "contract" in groups:
        problems += contract.problems(HERE, arguments.tool, cases.ALL)
    if "statuses" in groups:
        problems += run_statuses(arguments)
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f"{len(chosen)} cases, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
