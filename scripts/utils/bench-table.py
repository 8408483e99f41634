#!/usr/bin/env python3
"""Makes one Markdown table of the JSON files that the benchmarks wrote: bench-table.py [--record FILE] FOLDER

A benchmark "Name/arguments" is compared to its floor "Name_Floor/arguments" (or "Name_Floor" where the floor takes
none), and likewise to "Name_Peer". The counters "items", "aim", "aim_ns", "bytes", "aim_bytes" and those whose
names end in "_ns" are those that docs/performance.md tells.
"""

import argparse
import json
import pathlib
import re
import sys

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
COUNTERS = ("items", "aim", "aim_ns", "bytes", "aim_bytes")
BEGIN, END = "<!-- table: begin -->", "<!-- table: end -->"
HEAD = ["benchmark", "ns", "floor ns", "ratio", "aim", "", "pinned ns", "pinned ratio", "bytes", "aim", ""]


class Run:
    """The median of one benchmark; its time is that of one item where it counts items."""

    def __init__(self, entry):
        # Counters come as the sum over the threads.
        counters = {key: entry[key] / entry["threads"] for key in COUNTERS if key in entry}
        # How often it ran, and by which clock, is no part of what it is.
        self.name = re.sub(r"/(iterations:\d+|repeats:\d+|real_time|manual_time)(?=/|$)", "", entry["run_name"])
        self.time = entry["real_time"] * NANOSECONDS[entry["time_unit"]] / counters.get("items", 1)
        self.aim, self.aim_ns = counters.get("aim"), counters.get("aim_ns")
        self.bytes, self.aim_bytes = counters.get("bytes"), counters.get("aim_bytes")
        times = {key[:-3]: value for key, value in entry.items() if key.endswith("_ns")}
        self.parts = {key: (time, times.get("aim_" + key)) for key, time in times.items() if not key.startswith("aim")}


def load(path):
    if not path.exists() or path.stat().st_size == 0:
        return {}
    entries = json.loads(path.read_text())["benchmarks"]
    return {run.name: run for run in map(Run, (e for e in entries if e.get("aggregate_name", "median") == "median"))}


def references(name, runs):
    """The floor and the peer of a benchmark, as far as there are any."""
    base, slash, arguments = name.partition("/")
    for suffix in ("_Floor", "_Peer"):
        run = runs.get(base + suffix + slash + arguments) or runs.get(base + suffix)
        if run:
            yield suffix[1:].lower(), run


def number(value):
    return "" if value is None else f"{value:,.0f}" if value >= 100 else f"{value:.3g}"


def time_verdict(time, aim):
    if aim is None:
        return "", ""
    return number(aim) + " ns", "ok" if time <= aim else "over"


def verdict(run, ratio):
    if run.aim_ns is not None:
        return time_verdict(run.time, run.aim_ns)
    if run.aim is None or ratio is None:
        return "", ""
    return number(run.aim), "ok" if ratio <= run.aim else "over"


def memory_verdict(run):
    if run.aim_bytes is None:
        return "", ""
    return number(run.aim_bytes), "ok" if run.bytes <= run.aim_bytes else "over"


def rows(runs, pinned):
    for name, run in runs.items():
        if re.search(r"_(Floor|Peer)(/|$)", name):
            continue
        alone = pinned.get(name)
        # The aim is for the floor, and for the peer where there is no floor.
        for place, (kind, floor) in enumerate(list(references(name, runs)) or [("", None)]):
            ratio = run.time / floor.time if floor else None
            floor_alone = pinned.get(floor.name) if floor else None
            yield [
                name + (" (peer)" if kind == "peer" else ""),
                number(run.time),
                number(floor.time if floor else None),
                number(ratio),
                *(verdict(run, ratio) if place == 0 else ("", "")),
                number(alone.time if alone else None),
                number(alone.time / floor_alone.time if alone and floor_alone else None),
                number(run.bytes),
                *memory_verdict(run),
            ]
        for part, (time, aim) in run.parts.items():
            alone_time = alone.parts.get(part, (None, None))[0] if alone else None
            told = [number(time), "", "", *time_verdict(time, aim), number(alone_time)]
            yield [f"{name} ({part})"] + told + [""] * (len(HEAD) - 1 - len(told))


def table(folder):
    lines = ["| " + " | ".join(HEAD) + " |", "|---" + "|--:" * (len(HEAD) - 1) + "|"]
    for path in sorted(folder.glob("*.json")):
        if not path.name.endswith(".pinned.json"):
            runs, pinned = load(path), load(path.with_suffix(".pinned.json"))
            lines += ["| " + " | ".join(row) + " |" for row in rows(runs, pinned)]
    return "\n".join(lines)


def record(path, text):
    before, begin, rest = path.read_text().partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        sys.exit(f"{path} has no place for the table")
    path.write_text(f"{before}{BEGIN}\n\n{text}\n\n{END}{after}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--record", type=pathlib.Path, metavar="FILE")
    parser.add_argument("folder", type=pathlib.Path)
    arguments = parser.parse_args()
    text = table(arguments.folder)
    print(text)
    if arguments.record:
        record(arguments.record, text)


if __name__ == "__main__":
    main()
