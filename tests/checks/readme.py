#!/usr/bin/env python3
"""What the README prints is what happens: each `$ command` of its console blocks is run and its output
compared, and each C++ block is built against the installed library and run."""
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
PREFIX = ROOT / "build/install"
WORK = ROOT / "build/readme"


def blocks(text):
    return re.findall(r"^```(\w+)\n(.*?)^```", text, re.M | re.S)


def commands(block):
    """Pairs of a command and what follows it."""
    pairs = []
    for line in block.splitlines():
        if line.startswith("$ "):
            pairs.append([line[2:], ""])
        elif pairs:
            pairs[-1][1] += line + "\n"
    return pairs


def run(command, **more):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, **more)


def check_console(block):
    for command, expected in commands(block):
        if command.startswith("./dev test"):  # what is running right now
            continue
        done = run(command, shell=True, cwd=ROOT)
        if done.returncode != 0 or done.stdout != expected:
            sys.exit("README: `%s` gives status %d and prints\n%s" % (command, done.returncode, done.stdout))
        yield command


def check_program(number, block):
    source, program = WORK / ("example%d.cpp" % number), WORK / ("example%d" % number)
    source.write_text(block)
    libraries = next(PREFIX.rglob("libvelmara.so")).parent
    subprocess.run(["g++", "-std=c++17", "-Wall", "-Wextra", "-Werror", source, "-o", program, "-I", PREFIX / "include",
                    "-L", libraries, "-lvelmara", "-Wl,-rpath,%s" % libraries], check=True)
    printed = re.search(r"// prints: (.*)", block)
    arguments = re.search(r"// run with: (.*)", block)
    done = run([program] + (arguments.group(1).split() if arguments else []), cwd=ROOT)
    expected = printed.group(1) + "\n" if printed else done.stdout
    if done.returncode != 0 or done.stdout != expected:
        sys.exit("README: example %d gives status %d and prints\n%s" % (number, done.returncode, done.stdout))


def main():
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    checked, programs = [], 0
    for kind, block in blocks((ROOT / "README.md").read_text()):
        if kind == "console":
            checked += check_console(block)
        elif kind == "cpp":
            programs += 1
            check_program(programs, block)
    if not checked or not programs:
        sys.exit("README: no command or no program found")


main()
