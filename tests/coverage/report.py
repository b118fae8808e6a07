#!/usr/bin/env python3
"""Prints what the tests reach of each unit and room of the library, as llvm-cov exports it, and fails below what is
asked. What they do not reach is written to a third file, line by line with the conditions that never went one way.

A unit is a source with the header of its name. Left out are functions that are constexpr and never run: the
compiler has run them for a table or a static_assert. Of a template all instances count as one.
usage: report.py FILE.lcov FILE.json UNREACHED
"""
import collections
import json
import pathlib
import re
import sys

LINES, BRANCHES, LINES_OF_A_UNIT, BRANCHES_OF_A_ROOM = 95.0, 90.0, 90.0, 90.0
ROOMS = ("include2", "runtime", "header", "message", "media", "charset", "semantics", "html", "hash", "filetype", "verdict")
ROOT = pathlib.Path(__file__).resolve().parents[2]


class File:
    def __init__(self, path):
        self.path = path
        self.functions = collections.Counter()  # by first line
        self.lines = collections.Counter()
        self.branches = collections.Counter()  # by place and way

    def done_by_compiler(self):
        """The lines of functions of which the compiler alone has asked anything."""
        source = [""] + (ROOT / self.path).read_text().splitlines()
        lines = set()
        for first, count in self.functions.items():
            name = first
            while source[name].strip() == "{" or source[name].startswith(" " * 8):
                name -= 1  # a function begins at its brace
            if count or not re.match(r"\s*(static )?constexpr\b", source[name]):
                continue
            end = re.match(r"\s*", source[name]).group() + "}"
            last = first
            while not source[last].startswith(end) and not (last == first and source[last].endswith("}")):
                last += 1
            lines.update(range(name, last + 1))
        return lines

    def unreached(self):
        """What stands in the list of what no test reaches."""
        source = (ROOT / self.path).read_text().splitlines()
        left_out = self.done_by_compiler()
        missing = {line: ["line"] for line, count in self.lines.items() if not count}
        for (line, column, end, end_column, way), count in self.branches.items():
            if not count:
                condition = source[line - 1][column - 1:end_column - 1 if end == line else None]
                missing.setdefault(line, []).append(f"never {str(way).lower()}: {condition}")
        return [f"{self.path}:{line}: {source[line - 1].strip()}\n" + "".join(f"    {what}\n" for what in missing[line])
                for line in sorted(missing.keys() - left_out)]

    def counts(self):
        left_out = self.done_by_compiler()
        lines = [count for line, count in self.lines.items() if line not in left_out]
        branches = [count for (line, *_), count in self.branches.items() if line not in left_out]
        return [sum(map(bool, lines)), len(lines), sum(map(bool, branches)), len(branches)]


def read(lcov, exported):
    files = read_lines(lcov)
    for entry in json.loads(pathlib.Path(exported).read_text())["data"][0]["files"]:
        file = files.get(pathlib.Path(entry["filename"]).resolve())
        if not file:
            continue
        for line, *place, true, false, _, _, _ in entry["branches"]:
            file.branches[(line, *place, True)] += true
            file.branches[(line, *place, False)] += false
    return files.values()


def read_lines(lcov):
    files = {}
    for line in pathlib.Path(lcov).read_text().splitlines():
        key, _, value = line.partition(":")
        fields = value.split(",")
        if key == "SF":
            path = pathlib.Path(value).resolve()
            inside = ROOT in path.parents and path.relative_to(ROOT).parts[0] in ROOMS
            file = files.setdefault(path, File(path.relative_to(ROOT))) if inside else None
            names = {}
        elif file is None:
            continue
        elif key == "FN":
            names[",".join(fields[1:])] = int(fields[0])
            file.functions[int(fields[0])] += 0
        elif key == "FNDA":
            file.functions[names[",".join(fields[1:])]] += int(fields[0])
        elif key == "DA":
            file.lines[int(fields[0])] += int(fields[1])
    return files


def percent(covered, total):
    return 100.0 * covered / total if total else 100.0


def row(name, counts):
    lines, branches = percent(*counts[:2]), percent(*counts[2:])
    return f"{name:34} lines {counts[0]:5} of {counts[1]:5} {lines:6.1f} %   branches {counts[2]:5} of {counts[3]:5} {branches:6.1f} %"


def sums(named_counts):
    """The counts of equal names added up."""
    result = {}
    for name, counts in named_counts:
        result[name] = [sum(pair) for pair in zip(result.get(name, [0] * 4), counts)]
    return result


def main():
    files = sorted(read(*sys.argv[1:3]), key=lambda file: file.path)
    pathlib.Path(sys.argv[3]).write_text("".join(entry for file in files for entry in file.unreached()))
    places = {}
    for file in files:
        stem = file.path.stem
        if file.path.suffix == ".cpp" or stem not in places:
            places[stem] = f"{file.path.parent}/{stem}"
    units = sums((places[file.path.stem], file.counts()) for file in files)
    rooms = sums((name.split("/")[0], counts) for name, counts in units.items())
    total = [sum(counts) for counts in zip(*units.values())]
    for name in sorted(units):
        print(row(name, units[name]))
    for name in sorted(rooms):
        print(row(name, rooms[name]))
    print(row("total", total))

    failures = [f"{name}: below {LINES_OF_A_UNIT} % of lines"
                for name, counts in sorted(units.items()) if percent(*counts[:2]) < LINES_OF_A_UNIT]
    failures += [f"{name}: below {BRANCHES_OF_A_ROOM} % of branches"
                 for name, counts in sorted(rooms.items()) if percent(*counts[2:]) < BRANCHES_OF_A_ROOM]
    if percent(*total[:2]) < LINES:
        failures.append(f"total: below {LINES} % of lines")
    if percent(*total[2:]) < BRANCHES:
        failures.append(f"total: below {BRANCHES} % of branches")
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


sys.exit(main())
