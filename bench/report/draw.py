"""Draws the figures of docs/performance.md.

draw.py RAW DIRECTORY   draws the raw output of scripts/bench as SVG files in a directory
"""

import os
import sys

import operation_charts
import raw
import read_charts


def main(source, directory):
    rows = raw.read(source)
    memory = [row for row in rows if row.place == "memory"]
    figures = {
        "peers": read_charts.peer_ratios,
        "read-times": read_charts.read_times,
        "growth": operation_charts.growth,
        "bounds": operation_charts.bounds,
    }
    for name, draw in figures.items():
        draw(memory, os.path.join(directory, name + ".svg"))


main(sys.argv[1], sys.argv[2])
