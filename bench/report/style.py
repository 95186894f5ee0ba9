"""The look of the figures, and the way they are saved.

The files depend on the raw output only. Text stays text. A viewer with a dark background gets the
dark colours from a style sheet in the file.
"""

import re

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as pyplot  # noqa: E402  (the backend must be chosen first)

INK = "#1f2328"
PAPER = "#ffffff"
GRID = "#d0d7de"
DARK = {INK: "#e6edf3", PAPER: "#0d1117", GRID: "#3d444d"}
# Readable on both backgrounds.
BLUE, ORANGE, GREEN, PURPLE, RED, GREY = (
    "#2f81f7",
    "#d9730d",
    "#1a9a5a",
    "#a371f7",
    "#e5534b",
    "#848d97",
)

pyplot.rcParams.update(
    {
        "svg.fonttype": "none",
        "svg.hashsalt": "sitehlp",
        "font.family": "sans-serif",
        "font.size": 10,
        "figure.facecolor": PAPER,
        "axes.facecolor": PAPER,
        "legend.frameon": False,
        "text.color": INK,
        "axes.edgecolor": INK,
        "axes.labelcolor": INK,
        "xtick.color": INK,
        "ytick.color": INK,
        "grid.color": GRID,
        "axes.spines.top": False,
        "axes.spines.right": False,
        "axes.axisbelow": True,
    }
)


def axes(width, height, title):
    figure, its_axes = pyplot.subplots(figsize=(width, height), layout="constrained")
    its_axes.set_title(title, loc="left", fontsize=12)
    return figure, its_axes


def legend_below(its_axes, distance=0.13):
    its_axes.legend(
        loc="upper center", bbox_to_anchor=(0.5, -distance), ncols=2, fontsize=9
    )


def dark_rules():
    rules = []
    for light, dark in DARK.items():
        for what in ("fill", "stroke"):
            rules.append(f'[style*="{what}: {light}"] {{{what}: {dark} !important}}')
    # Text without a colour of its own is black.
    rules.append(f"text {{fill: {DARK[INK]}}}")
    return "@media (prefers-color-scheme: dark) {" + " ".join(rules) + "}"


def save(figure, path):
    nothing = dict.fromkeys(("Date", "Creator", "Format", "Type"))
    figure.savefig(path, format="svg", metadata=nothing)
    pyplot.close(figure)
    with open(path, encoding="utf-8") as file:
        text = file.read()
    text = text.replace("</style>", dark_rules() + "</style>", 1)
    text = re.sub(r"[ \t]+$", "", text, flags=re.MULTILINE)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
