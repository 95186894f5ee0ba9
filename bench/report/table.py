"""Prints the rows of the raw output, which it reads from standard input, as tables in Markdown."""

import sys

import raw

TITLES = {"memory": "Files in memory:", "disk": "Files on a disk:"}
HEADER = """
| operation | baseline | ratio | bound | result | operation takes | baseline takes |
|---|---|---|---|---|---|---|"""
UNITS = {"ns": (1000, "µs"), "KiB": (1024, "MiB"), "instructions": (1e6, "million")}


def shown(cost, unit):
    divisor, name = UNITS[unit]
    value = cost / divisor
    return f"{value:.3g} {name}" if value < 100 else f"{value:,.0f} {name}"


def result(row):
    if not row.bound:
        return "for comparison"
    return "met" if row.ratio <= row.bound else "**missed**"


def main():
    place = None
    # An iteration over the file would wait for a full buffer.
    for row in raw.parse(iter(sys.stdin.readline, "")):
        if row.place != place:
            print(("\n" if place else "") + TITLES[row.place])
            print(HEADER)
            place = row.place
        cells = (
            row.operation,
            row.baseline,
            f"{row.ratio:.2f}",
            f"{row.bound:.2f}" if row.bound else "-",
            result(row),
            shown(row.cost, row.unit),
            shown(row.baseline_cost, row.unit),
        )
        print("| " + " | ".join(cells) + " |", flush=True)


main()
