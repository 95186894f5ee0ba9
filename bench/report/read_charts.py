"""The figures of reading, against the same job with other libraries."""

import re

from matplotlib.ticker import FuncFormatter

import style

READ = re.compile(r"ReadSiteList, (\d+) sites, (first read|bytes seen before)")
SHOW = re.compile(r"sitelist show --json, (\d+) sites, whole process")
PEERS = {"libxml2": style.BLUE, "tinyxml2": style.ORANGE, "pugixml": style.GREEN}


def reads(rows):
    """Yields (row, sites, state, peer) for the rows against the whole job of a peer."""
    for row in rows:
        match = READ.fullmatch(row.operation)
        if match:
            yield row, int(match[1]), match[2], row.baseline.partition(",")[0]


def remark(rows, peer):
    """Returns the name of a peer as in its rows, such as "pugixml, unchecked"."""
    baseline = next(row.baseline for row, _, _, name in reads(rows) if name == peer)
    return baseline.replace(", whole job", "")


def plain(axis):
    axis.set_major_formatter(FuncFormatter(lambda value, _: f"{value:,g}"))


def save_by_sites(figure, axes, label, path, yticks=None):
    """Completes a chart with the number of sites along its logarithmic x axis."""
    axes.set_xscale("log")
    axes.set_yscale("log")
    axes.set_xlabel("sites in the list")
    axes.set_ylabel(label)
    axes.set_xticks([12, 100, 1000, 10000])
    if yticks:
        axes.set_yticks(yticks)
    axes.minorticks_off()
    plain(axes.xaxis)
    plain(axes.yaxis)
    axes.grid(True, axis="y")
    style.legend_below(axes)
    style.save(figure, path)


def peer_ratios(rows, path):
    figure, axes = style.axes(8, 5.2, "ReadSiteList against the same job with other libraries")
    for peer, colour in PEERS.items():
        for state, marker, line in (("first read", "o", "-"), ("bytes seen before", "s", "--")):
            chosen = sorted(
                (sites, row) for row, sites, its, name in reads(rows) if (its, name) == (state, peer)
            )
            sizes = [sites for sites, _ in chosen]
            ratios = [row.ratio for _, row in chosen]
            spread = [
                [row.ratio - row.low for _, row in chosen],
                [row.high - row.ratio for _, row in chosen],
            ]
            label = f"{remark(rows, peer)}: {state}"
            axes.errorbar(
                sizes, ratios, spread, label=label, color=colour, marker=marker, linestyle=line
            )
            bounded = [(sites, row.bound) for sites, row in chosen if row.bound]
            if bounded:
                axes.plot(
                    *zip(*bounded),
                    label=f"bound against {peer}: {state}",
                    color=colour,
                    marker=marker,
                    markersize=8,
                    fillstyle="none",
                    linestyle="none",
                )
    axes.axhline(1, color=style.GREY, linewidth=1)
    label = "time as a multiple of the peer's"
    save_by_sites(figure, axes, label, path, yticks=[0.25, 0.5, 1, 2, 4])


def read_times(rows, path):
    figure, axes = style.axes(8, 5, "Time to read a list")
    series = {}
    for row, sites, state, peer in reads(rows):
        if state == "first read":
            series.setdefault(remark(rows, peer), {})[sites] = row.baseline_cost
        # The row against libxml2 stands for all rows of the operation.
        if peer == "libxml2":
            series.setdefault("ReadSiteList, " + state, {})[sites] = row.cost
    for row in rows:
        match = SHOW.fullmatch(row.operation)
        if match:
            series.setdefault("process: sitelist show --json", {})[int(match[1])] = row.cost
            series.setdefault("process: Python ElementTree", {})[int(match[1])] = row.baseline_cost
    looks = {
        "process: Python ElementTree": (style.GREY, "v", ":"),
        "process: sitelist show --json": (style.RED, "^", ":"),
        "ReadSiteList, first read": (style.RED, "o", "-"),
        "ReadSiteList, bytes seen before": (style.PURPLE, "s", "--"),
    }
    for peer, colour in PEERS.items():
        looks[remark(rows, peer)] = (colour, "x", "-")
    for name, (colour, marker, line) in looks.items():
        points = sorted(series[name].items())
        axes.plot(
            [sites for sites, _ in points],
            [cost / 1e6 for _, cost in points],
            label=name,
            color=colour,
            marker=marker,
            linestyle=line,
        )
    save_by_sites(figure, axes, "milliseconds", path)
