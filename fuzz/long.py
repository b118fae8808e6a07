#!/usr/bin/env python3
"""Runs fuzz targets until each has had 10 million inputs and 20 minutes of processor time.

    fuzz/long.py [TARGET...]      goes on where the last run stopped; all targets if none is named
    fuzz/long.py report           a table of what has been run so far
    fuzz/long.py keep             adds what has been run here to fuzz/runs.txt; not while a run goes on

`./dev fuzz long` builds what this needs and calls it. Each turn of a minute is noted in build/fuzz-runs.txt (target,
inputs, seconds of processor time, preset, longest input) as soon as it is over, so nothing but the last minute is lost
when a run is stopped. fuzz/runs.txt holds the sums of runs that are worth keeping (target, inputs, seconds), which count
as well. Take a target out of it when its claims become stricter. A target that finds something is left at once; the
others go on, and the exit status is 1."""

import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

INPUTS = 10_000_000
SECONDS = 20 * 60

# Preset and longest input of the turns that a target goes through again and again. Most are short, for the number of
# inputs; some trace what is compared with what, and some are long enough for what no short input reaches.
BULK = ("fuzz-bulk", 40)
TURNS = [("fuzz", 200)] + [BULK] * 3 + [("fuzz", 1000)] + [BULK] * 3

# Speed is what the bulk is for: a call stack with each block would take a fifth of it, and choosing inputs by how rare
# is what they reach, up to a half.
BULK_OPTIONS = "malloc_context_size=0:quarantine_size_mb=1"

RUNS = pathlib.Path("build/fuzz-runs.txt")
KEPT = pathlib.Path("fuzz/runs.txt")
CORPUS = pathlib.Path("build/fuzz-corpus")


def targets():
    return sorted(source.stem for source in pathlib.Path("fuzz").glob("*.cpp"))


def rows_of(file, target):
    rows = [line.split() for line in file.read_text().splitlines()] if file.exists() else []
    return [row for row in rows if row[0] == target]


def done_by(target):
    """Turns of this folder, and all inputs and seconds so far."""
    here, kept = rows_of(RUNS, target), rows_of(KEPT, target)
    return len(here), sum(int(row[1]) for row in here + kept), sum(float(row[2]) for row in here + kept)


def stored_inputs(target):
    """The folders of stored inputs; those of the archive are unpacked."""
    folder = pathlib.Path("build/fuzz-stored") / target
    folder.mkdir(parents=True, exist_ok=True)
    archive = pathlib.Path("fuzz/corpus") / f"{target}.tar.gz"
    if archive.exists():
        subprocess.run(["tar", "-xzf", archive, "-C", folder], check=True)
    seeds = pathlib.Path("fuzz/seeds") / target
    return [folder] + ([seeds] if seeds.is_dir() else [])


def turn(target, preset, longest):
    """A minute of one target, noted; false if it found something."""
    corpus, log = CORPUS / target, CORPUS / f"{target}.log"
    corpus.mkdir(parents=True, exist_ok=True)
    dictionary = pathlib.Path("fuzz") / f"{target}.dict"
    command = [f"build/{preset}/bin/fuzz_{target}", "-max_total_time=60", f"-max_len={longest}", "-timeout=20",
               "-rss_limit_mb=4096", "-print_final_stats=1", f"-artifact_prefix={corpus}-"]
    command += [f"-dict={dictionary}"] if dictionary.exists() else []
    command += ["-entropic=0"] if preset == "fuzz-bulk" else []
    command += [corpus] + stored_inputs(target)
    environment = dict(os.environ, ASAN_OPTIONS=BULK_OPTIONS) if preset == "fuzz-bulk" else None
    with log.open("wb") as out:
        process = subprocess.Popen(command, stdout=out, stderr=out, env=environment)
        _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    executed = re.search(r"^stat::number_of_executed_units: *(\d+)", log.read_text(errors="replace"), re.MULTILINE)
    if process.returncode != 0 or not executed:
        print(f"{target} found something or could not run; see {log}, the input is beside it", file=sys.stderr, flush=True)
        return False
    with RUNS.open("a") as runs:
        runs.write(f"{target} {executed[1]} {usage.ru_utime + usage.ru_stime:.1f} {preset} {longest}\n")
    return True


def run(target):
    while True:
        turns, inputs, seconds = done_by(target)
        if inputs >= INPUTS and seconds >= SECONDS:
            print(f"{target}: {inputs} inputs, {seconds:.0f} s, nothing found", flush=True)
            return True
        # A slow target that has had its time lacks nothing but the number.
        if not turn(target, *(TURNS[turns % len(TURNS)] if seconds < SECONDS else BULK)):
            return False


def report():
    print(f"{'target':22} {'inputs':>12} {'CPU s':>8}")
    for target in targets():
        _, inputs, seconds = done_by(target)
        print(f"{target:22} {inputs:12,} {seconds:8,.0f}")


def keep():
    sums = {target: done_by(target) for target in targets()}
    lines = [f"{target} {inputs} {seconds:.0f}\n" for target, (_, inputs, seconds) in sums.items() if inputs]
    KEPT.write_text("".join(lines))
    RUNS.unlink(missing_ok=True)


def main(names):
    os.chdir(pathlib.Path(__file__).resolve().parent.parent)
    if names in (["report"], ["keep"]):
        return {"report": report, "keep": keep}[names[0]]()
    unknown = set(names) - set(targets())
    if unknown:
        sys.exit(f"no fuzz target {' '.join(sorted(unknown))}; there are: {' '.join(targets())}")
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        if not all(list(pool.map(run, names or targets()))):
            sys.exit(1)


if __name__ == "__main__":
    main(sys.argv[1:])
