#!/usr/bin/env python3
"""Writes the results of benchmark programs as Markdown: scripts/benchmark-table.py RESULT.json...

A benchmark is named work/subject/size; ours are the subjects that begin with the name of a class of the library. Each
of ours stands beside each other subject that did the same work at the same size. Marked with ! is what costs more than
TOLERANCE times as much, and what grows by more than TOLERANCE times its size from the smallest one.
"""

import itertools
import json
import pathlib
import sys
from collections import defaultdict

BENCHMARKS = pathlib.Path(__file__).resolve().parent.parent / "benchmarks"
OURS = ("Utils", "WaitingSpinnerWidget")
TOLERANCE = 1.25
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
WALL_CLOCK = {"real_time": "real_time", "manual_time": "real_time"}


def read(path):
    """The work's times in nanoseconds and turns in milliseconds, by work, subject and size."""
    times, turns = defaultdict(dict), {}
    for run in json.loads(path.read_text())["benchmarks"]:
        if run.get("run_type") == "aggregate" or run.get("error_occurred"):
            continue
        parts = run["name"].split("/")
        clock = WALL_CLOCK.get(parts[-1], "cpu_time")
        size = [part for part in parts[2:] if part.split(":")[-1].isdigit() and not part.startswith("iterations")]
        subject = parts[1] if len(parts) > 1 else ""
        key = (parts[0], tuple(int(part.split(":")[-1]) for part in size))
        times[key][subject] = run[clock] * NANOSECONDS[run["time_unit"]]
        if "bare_qt_median_us" in run:  # one that ran both in turns and compares the medians
            times[key][subject] = run["median_us"] * NANOSECONDS["us"]
            times[key]["Qt"] = run["bare_qt_median_us"] * NANOSECONDS["us"]
        turns[key + (subject,)] = run.get("longest_turn_ms")
    return times, turns


def text_of_time(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def marked(value, limit):
    return f"{value:.3g}" + (" !" if value > limit else "")


def growth(times, work, size, subject):
    """How the cost grew from the smallest size that differs in one number, beside how that number did."""
    sizes = sorted(other for name, other in times if name == work and subject in times[name, other])
    for place, number in enumerate(size):
        rest = size[:place] + size[place + 1 :]
        smallest = next(other for other in sizes if other[:place] + other[place + 1 :] == rest)
        if 0 < smallest[place] < number:
            factor = number / smallest[place]
            cost = times[work, size][subject] / times[work, smallest][subject]
            return f"{marked(cost, factor * TOLERANCE)} for {factor:.3g}"
    return ""


def introduction(program):
    """What the program's source says at its beginning of what it measures."""
    lines = (BENCHMARKS / f"{program}.cpp").read_text().splitlines()
    comment = itertools.takewhile(lambda line: line.startswith("//"), lines)
    return "\n".join(line.removeprefix("//").strip() for line in comment)


def rows(times, turns):
    for (work, size), subjects in times.items():
        for ours in (name for name in subjects if name.startswith(OURS)):
            others = [name for name in subjects if not name.startswith(OURS)] or [None]
            for other in others:
                cost, turn = subjects[ours], turns[work, size, ours]
                yield (
                    work,
                    " x ".join(map(str, size)),
                    f"{ours} {text_of_time(cost)}",
                    f"{other} {text_of_time(subjects[other])}" if other else "",
                    marked(cost / subjects[other], TOLERANCE) if other else "",
                    growth(times, work, size, ours),
                    growth(times, work, size, other) if other else "",
                    f"{turn:.3g}" if turn is not None else "",
                )


def main():
    print("# Benchmarks\n\nTimes are those of the processor, where several threads work together those of the clock.")
    print(f"Marked with ! is a ratio above {TOLERANCE}, and a growth that is as much above that of the size.")
    for path in sorted(map(pathlib.Path, sys.argv[1:])):
        header = ("Work", "Size", "Ours", "Bare Qt", "Ratio", "Growth", "Growth of bare Qt", "Longest turn, ms")
        print(f"\n## {path.stem}\n\n{introduction(path.stem)}\n\n| {' | '.join(header)} |\n|{'---|' * len(header)}")
        for row in rows(*read(path)):
            print(f"| {' | '.join(row)} |")


if __name__ == "__main__":
    main()
