#!/usr/bin/env python3
"""What `velmara scan` costs over a generated mbox with everything that a line can hold: messages a second
on one thread and on two, what the second thread gains, processor time, and the most memory it took. Size in
megabytes from VELMARA_SCAN_MB (1000), threads from VELMARA_SCAN_THREADS ("1 2")."""
import os
import pathlib
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
VELMARA = ROOT / "build/release/bin/velmara"
MAKE = ROOT / "tests/support/make-mails.py"


def run(words):
    """Seconds, seconds of processors, and megabytes at most."""
    begun = time.monotonic()
    child = os.posix_spawn(words[0], words, os.environ)
    _, status, used = os.wait4(child, 0)
    if status != 0:
        sys.exit("scan.py: %s ended with status %d" % (" ".join(words), status))
    return time.monotonic() - begun, used.ru_utime + used.ru_stime, used.ru_maxrss / 1024


def main():
    megabytes = int(os.environ.get("VELMARA_SCAN_MB", "1000"))
    threads = os.environ.get("VELMARA_SCAN_THREADS", "1 2").split()
    with tempfile.TemporaryDirectory() as folder:
        mbox, lines = os.path.join(folder, "mails.mbox"), os.path.join(folder, "lines")
        with open(mbox, "wb") as file:
            subprocess.run([MAKE, "--bytes", str(megabytes * 1000000)], stdout=file, check=True)
        empty = os.path.join(folder, "empty")
        open(empty, "wb").close()
        idle = run([str(VELMARA), "scan", "-j", "1", "-o", lines, empty])
        print("before the first message: %.2f s, %.2f s of processors, %.0f MB (word lists and file types)" % idle)
        first = None
        for count in threads:
            seconds, processors, memory = run([str(VELMARA), "scan", "-j", count, "-o", lines, mbox])
            with open(lines, "rb") as file:
                messages = sum(block.count(b"\n") for block in iter(lambda: file.read(1 << 20), b""))
            rate = messages / (seconds - idle[0])
            first = first or rate
            print("%s threads: %d messages of %.1f kB, %.0f a second, %.2f times the first, %.0f a second of processors, "
                  "%.0f MB beyond those before" % (count, messages, os.path.getsize(mbox) / messages / 1000, rate, rate / first,
                                                   messages / (processors - idle[1]), memory - idle[2]))


main()
