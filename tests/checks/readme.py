#!/usr/bin/env python3
"""What the README and the guide print is what happens: each `$ command` of its console blocks is run and its output
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


def check_console(page, block):
    for command, expected in commands(block):
        if command.startswith("./dev test"):  # what is running right now
            continue
        done = run(command, shell=True, cwd=ROOT)
        if done.returncode != 0 or done.stdout != expected:
            sys.exit("%s: `%s` gives status %d and prints\n%s" % (page, command, done.returncode, done.stdout))
        yield command


def check_program(page, number, block):
    program = WORK / ("%s-%d" % (pathlib.Path(page).stem, number))
    source = program.with_suffix(".cpp")
    source.write_text(block)
    libraries = next(PREFIX.rglob("libvelmara.so")).parent
    subprocess.run(["g++", "-std=c++17", "-Wall", "-Wextra", "-Werror", "-pthread", source, "-o", program, "-I", PREFIX / "include",
                    "-L", libraries, "-lvelmara", "-Wl,-rpath,%s" % libraries], check=True)
    printed = re.findall(r"^// prints: (.*)", block, re.M)
    arguments = re.search(r"// run with: (.*)", block)
    done = run([program] + (arguments.group(1).split() if arguments else []), cwd=ROOT)
    expected = "".join(line + "\n" for line in printed) or done.stdout
    if done.returncode != 0 or done.stdout != expected:
        sys.exit("%s: program %d gives status %d and prints\n%s" % (page, number, done.returncode, done.stdout))


def check_page(page):
    commands_run, programs = [], 0
    for kind, block in blocks((ROOT / page).read_text()):
        if kind == "console":
            commands_run += check_console(page, block)
        elif kind == "cpp":
            programs += 1
            check_program(page, programs, block)
        else:
            sys.exit("%s: nothing checks a block of \"%s\"" % (page, kind))
    if not commands_run or not programs:
        sys.exit("%s: no command or no program found" % page)


def main():
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    for page in ("README.md", "docs/guide.md"):
        check_page(page)


main()
