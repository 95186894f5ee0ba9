"""Reads the raw output of scripts/bench."""

from dataclasses import dataclass


@dataclass
class Row:
    place: str  # memory or disk
    operation: str
    baseline: str
    ratio: float  # the median of the samples
    low: float  # the quartiles
    high: float
    bound: float  # 0: for comparison only
    cost: float
    baseline_cost: float
    unit: str
    samples: int


def parse(lines):
    """Yields the rows. A line that begins with "#" is a comment."""
    for line in lines:
        if line.startswith("#"):
            continue
        place, operation, baseline, *numbers, unit, samples = line.rstrip("\n").split("\t")
        yield Row(place, operation, baseline, *map(float, numbers), unit, int(samples))


def read(path):
    with open(path, encoding="utf-8") as file:
        return list(parse(file))
