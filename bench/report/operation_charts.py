"""The figures of other operations."""

import re

import style

GROWTH = re.compile(r"(.*), 10000 elements, (instructions|time)")


def dots(axes, rows, labels, colour, marker, label):
    """Draws a row of the table in a line of its own."""
    places = range(len(rows))
    ratios = [row.ratio for row in rows]
    spread = [[row.ratio - row.low for row in rows], [row.high - row.ratio for row in rows]]
    axes.errorbar(
        ratios, places, xerr=spread, color=colour, marker=marker, linestyle="none", label=label
    )
    axes.set_yticks(list(places), labels)
    axes.set_ylim(len(rows) - 0.5, -0.5)
    axes.grid(True, axis="both")


def growth(rows, path):
    figure, axes = style.axes(9, 5.4, "10,000 elements against 1,000")
    for what, colour, marker in (("time", style.GREY, "|"), ("instructions", style.BLUE, "o")):
        chosen = []
        for row in rows:
            match = GROWTH.fullmatch(row.operation)
            # The baseline of the edits has a time only.
            if match and match[2] == what and not match[1].startswith("expat"):
                chosen.append((match[1], row))
        names = [name for name, _ in chosen]
        dots(axes, [row for _, row in chosen], names, colour, marker, what)
        bounds = {row.bound for _, row in chosen if row.bound}
        for bound in bounds:
            axes.axvline(bound, color=style.RED, linewidth=1, label=f"bound of the {what}")
    axes.set_xlabel("cost as a multiple of that with 1,000 elements")
    axes.set_xlim(left=0)
    style.legend_below(axes)
    style.save(figure, path)


def bounds(rows, path):
    chosen = [
        row
        for row in rows
        if row.bound and not GROWTH.fullmatch(row.operation) and "whole job" not in row.baseline
    ]
    figure, axes = style.axes(10, 0.32 * len(chosen) + 1.2, "Other operations with a bound")
    dots(
        axes,
        chosen,
        [f"{row.operation}\nagainst {row.baseline}" for row in chosen],
        style.BLUE,
        "o",
        "measured",
    )
    axes.tick_params(axis="y", labelsize=7)
    axes.scatter(
        [row.bound for row in chosen],
        range(len(chosen)),
        color=style.RED,
        marker="|",
        s=120,
        label="bound",
    )
    axes.set_xlabel("cost as a multiple of the baseline's")
    axes.set_xlim(left=0)
    style.legend_below(axes, 0.07)
    style.save(figure, path)
