"""Compares the table of exit statuses with runs of the tool."""

import os
import subprocess
from concurrent.futures import ThreadPoolExecutor

from status_runs import WAYS
from status_table import TABLE, read_table
from world import environment


def command_of(line, commands):
    return max((name for name in commands if f"{line} ".startswith(f"{name} ")), key=len, default="")


def run_way(world, way, interposer):
    directory = world.copy(way.agent) if way.writes or way.prepare else world.dir
    if way.prepare:
        way.prepare(directory)
    variables = {"LD_PRELOAD": interposer, **way.interposer(directory)} if way.interposer else {}
    wait = ["--wait", "0"] if way.agent == "busy" else []
    with open(os.devnull, "rb") as unwritable:
        process = subprocess.run([world.tool, "--agent-dir", way.agent, *wait, *way.line.split()],
                                 input=way.stdin.encode(), stdout=unwritable if way.closes else subprocess.PIPE,
                                 stderr=subprocess.PIPE, cwd=directory, env={**environment(), **variables},
                                 check=False)
    text = (process.stderr or process.stdout or b"").decode()
    if process.returncode != way.status or way.says not in text:
        return [f"{way.name}: status {process.returncode} instead of {way.status}, or no \"{way.says}\" in\n{text}"]
    return []


def table_problems(table, ways):
    """A cell needs a way for each of its phrases. A way needs a cell."""
    commands = {command for command, _ in table}
    shown = [(command_of(way.line, commands), way.status) for way in ways]
    problems = [f"{command} {status}: {shown.count((command, status))} of {max(1, len(phrases))} ways are shown"
                for (command, status), phrases in table.items()
                if shown.count((command, status)) < max(1, len(phrases))]
    return problems + [f"{command or 'unknown command'} {status}: shown, but not in {TABLE.name}"
                       for command, status in sorted(set(shown)) if (command, status) not in table]


def unnoticed(table):
    """Damages the table in four ways. Returns the faults that table_problems does not find."""
    (command, status), *_ = table
    kept = {cell: phrases for cell, phrases in table.items() if cell != (command, status)}
    wrong = {
        "a cell that nothing shows": {**table, (command, 1): []},
        "a phrase that nothing shows": {**table, (command, status): ["one", "two"]},
        "a run without a cell": kept,
        "a command that is not in the table": {cell: kept[cell] for cell in kept if cell[0] != command},
    }
    return [f"{what} is not found" for what, changed in wrong.items() if not table_problems(changed, WAYS)]


def problems(world, interposer):
    chosen = [way for way in WAYS if interposer or not way.interposer]
    if len(chosen) < len(WAYS):
        print(f"{len(WAYS) - len(chosen)} runs need an interposer and did not take place")
    before = world.snapshot()
    with ThreadPoolExecutor(2) as pool:
        results = list(pool.map(lambda way: run_way(world, way, interposer), chosen))
    changed = sorted(name for name, _ in before.items() ^ world.snapshot().items())
    table = read_table()
    return [*unnoticed(table), *table_problems(table, WAYS), *(problem for result in results for problem in result),
            *([f"these files or directories were changed, made or left: {changed}"] if changed else [])]
