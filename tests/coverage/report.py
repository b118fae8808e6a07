#!/usr/bin/env python3
"""Prints what the tests reach of each unit of the library, from a summary of gcovr, and fails below what is asked.

A unit is a source with the header of its name. usage: report.py SUMMARY.json
"""
import json
import pathlib
import sys

LINES, BRANCHES, LINES_OF_A_UNIT = 95.0, 90.0, 90.0
COUNTS = ("line_covered", "line_total", "branch_covered", "branch_total")


def percent(covered, total):
    return 100.0 * covered / total if total else 100.0


def row(name, counts):
    lines, branches = percent(*counts[:2]), percent(*counts[2:])
    return f"{name:34} lines {counts[0]:5} of {counts[1]:5} {lines:6.1f} %   branches {counts[2]:5} of {counts[3]:5} {branches:6.1f} %"


def main():
    units, places = {}, {}
    for file in json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]:
        path = pathlib.PurePath(file["filename"])
        counts = units.setdefault(path.stem, [0] * len(COUNTS))
        for i, key in enumerate(COUNTS):
            counts[i] += file[key]
        if path.suffix == ".cpp" or path.stem not in places:
            places[path.stem] = f"{path.parent}/{path.stem}"
    units = {places[stem]: counts for stem, counts in units.items()}

    total = [sum(counts) for counts in zip(*units.values())]
    for name in sorted(units):
        print(row(name, units[name]))
    print(row("total", total))

    failures = [f"{name}: below {LINES_OF_A_UNIT} % of lines"
                for name, counts in sorted(units.items()) if percent(*counts[:2]) < LINES_OF_A_UNIT]
    if percent(*total[:2]) < LINES:
        failures.append(f"total: below {LINES} % of lines")
    if percent(*total[2:]) < BRANCHES:
        failures.append(f"total: below {BRANCHES} % of branches")
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


sys.exit(main())
