"""Draws the figures of a bench run: a line for each workload, a mark for each contender.

usage: plot.py RESULTS.csv PICTURE.svg

A mark stands as far right as the contender took longer than the fastest one, on a logarithmic scale.
"""
import collections
import csv
import sys

import matplotlib
import matplotlib.pyplot as plt

WORK = {
    "W1": "append records of {} B", "W1o": "overwrite records of {} B", "W2": "decode records of {} B",
    "W3": "read {} B at random", "W3m": "read {} B at random, image", "W4": "chase, {} file(s)",
    "W5c": "create {} pools", "W5o": "open {} pools", "W6": "import {} B", "W8": "write {} B at random",
    "W9s": "store a locator, {} pools", "W9l": "load a locator, {} pools",
    "W10w": "write a text of up to {} B", "W10r": "read a text of up to {} B",
}
LIBRARY = {"library": ("#c0392b", "o", 9), "library-calls": ("#e59866", "o", 6)}
FLOORS = {"mapping": "s", "pread/pwrite": "D", "memcpy": "v", "sendfile": "<", "cp": ">"}
PEER_MARKS = "P*Xhd^p8"


def title(case):
    work, _, size = case.partition("/")
    return WORK[work].format(f"{int(size):,}" if size.isdigit() else size)


def style(contender, kind, peers):
    if contender in LIBRARY:
        colour, mark, size = LIBRARY[contender]
        return {"color": colour, "marker": mark, "markersize": size, "zorder": 4}
    if kind == "floor":
        return {"color": "black", "marker": FLOORS[contender], "markersize": 6, "zorder": 3}
    number = peers.index(contender)
    return {"color": matplotlib.colormaps["tab10"](number % 10), "marker": PEER_MARKS[number % 8],
            "markersize": 6, "zorder": 2}


def draw(rows, picture):
    cases = list(dict.fromkeys(row["case"] for row in rows))
    peers = list(dict.fromkeys(row["contender"] for row in rows if row["kind"] == "peer"))
    series = collections.defaultdict(lambda: ([], []))
    for row in rows:
        if row["contender"] == "library-base":
            continue
        fastest = min(float(each["median_ns"]) for each in rows if each["case"] == row["case"])
        xs, ys = series[row["contender"], row["kind"]]
        xs.append(float(row["median_ns"]) / fastest)
        ys.append(cases.index(row["case"]))

    plt.rcParams.update({"svg.hashsalt": "bench", "svg.fonttype": "none", "font.size": 9})
    figure, axes = plt.subplots(figsize=(9, 1.2 + 0.24 * len(cases)), layout="constrained")
    for (contender, kind), (xs, ys) in series.items():
        axes.plot(xs, ys, linestyle="none", label=contender, **style(contender, kind, peers))
    axes.set_xscale("log")
    axes.set_xlabel("time, as a multiple of the fastest contender's (median)")
    axes.set_yticks(range(len(cases)), [title(case) for case in cases])
    axes.set_ylim(len(cases) - 0.5, -0.5)
    axes.grid(axis="x", which="major", color="0.8")
    axes.grid(axis="y", color="0.93")
    axes.set_axisbelow(True)
    axes.legend(loc="lower center", bbox_to_anchor=(0.4, 1), ncols=6, frameon=False)
    figure.savefig(picture, metadata={"Date": None})


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], newline="", encoding="utf-8") as results:
        rows = [row for row in csv.DictReader(results) if row["median_ns"] != "peak_bytes"]
    draw(rows, sys.argv[2])


if __name__ == "__main__":
    main()
