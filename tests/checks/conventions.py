#!/usr/bin/env python3
"""What every verb of the command keeps to: help with an example that works, exit statuses, "-" and "--",
NO_COLOR, quiet ends by signals, complaints about a full disk. The verbs are those that `velmara --help`
lists, so a new one is held to the same."""
import fcntl
import itertools
import os
import pathlib
import pty
import re
import select
import shlex
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
VELMARA = ROOT / "build/release/bin/velmara"
SAMPLES = sorted((ROOT / "samples").glob("*.eml"))
MAIL = b"""Received: from a.example by b.example; Mon, 1 Jan 2024 00:00:00 +0000
Content-Type: multipart/mixed; boundary=b

--b

plain text
--b
Content-Type: text/html; charset=utf-8

<p>Some words, <a href="http://shop.example/">a link</a></p>
--b--
"""
INPUTS = ("FILE", "TEXT", "LINE", "PATH")  # what a verb may read from standard input

failures = []


def claim(holds, what, *details):
    if not holds:
        failures.append(what)
        print("conventions: %s" % what, *details, file=sys.stderr, sep="\n    ")


def run(*arguments, **more):
    more.setdefault("stdin", subprocess.DEVNULL)
    return subprocess.run([VELMARA, *arguments], capture_output="stdout" not in more, timeout=60,
                          **({"stderr": subprocess.PIPE} if "stdout" in more else {}), **more)


def verbs():
    listed = run("--help").stdout.decode().partition("Subcommands:\n")[2].partition("\n\n")[0]
    return re.findall(r"^  ([a-z-]+)", listed, re.M)


class Verb:
    """What the help of a verb says of it."""

    def __init__(self, name):
        self.name = name
        self.help = run(name, "--help")
        text = self.help.stdout.decode()
        usage = re.search(r"^Usage: velmara %s(.*)" % re.escape(name), text, re.M)
        self.positionals = re.findall(r"[A-Z]{2,}", usage.group(1).replace("[OPTIONS]", "")) if usage else []
        self.example = re.search(r"^Example: (velmara %s\b.*)" % re.escape(name), text, re.M)

    def words(self):
        """Of the example, without what the shell would do beside."""
        reader = shlex.shlex(self.example.group(1), posix=True, punctuation_chars=True)
        reader.whitespace_split = True
        return list(itertools.takewhile(lambda word: not set(word) <= set("<>|;&"), reader))[1:]

    def writes(self):
        return "-o" in self.words()

    def needs_output(self):
        return bool(re.search(rb"^ +-o\b.*REQUIRED", self.help.stdout, re.M))

    def output(self):
        """What a call has to have beside its input."""
        return ["-o", "output"] if self.needs_output() else []

    def printing(self):
        """The words of the example, so that it writes to standard output."""
        words = self.words()
        if self.writes():
            del words[words.index("-o"):words.index("-o") + 2]
        return words

    def mail(self):
        """A file that it can read, whose name begins like an option."""
        return "-x.ndjson" if self.name == "group" else "-x.eml"

    def reads(self):
        return [name for name in self.positionals if name in INPUTS][:1] if self.name != "names" else []

    def further(self):
        """What stands behind the input: the path of a part."""
        return ["1"] * (len(self.positionals) - 1) if self.positionals else []


def files_of_examples(folder):
    """Every file that an example names."""
    (folder / "mail.eml").write_bytes(MAIL)
    shutil.copy(ROOT / "samples/reminder.eml", folder / "-x.eml")
    shutil.copy(ROOT / "samples/newsletter.eml", folder / "strange.eml")
    (folder / "page.html").write_text("<p>" + "some words of a page " * 9)
    (folder / "report.docx").write_bytes(b"PK\003\004")
    mails = [b"From a@b.example Mon Jan  1 00:00:00 2024\n" + path.read_bytes() + b"\n" for path in SAMPLES]
    (folder / "archive.mbox").write_bytes(b"".join(mails))
    (folder / "archive").mkdir()
    for path in SAMPLES:
        shutil.copy(path, folder / "archive")
    if "scan" in verbs():
        for name in ("archive.ndjson", "-x.ndjson"):
            (folder / name).write_bytes(run("scan", "archive.mbox", cwd=folder).stdout)


def check_help(verb):
    claim(verb.help.returncode == 0 and not verb.help.stderr, "%s --help: status 0, nothing on standard error" % verb.name)
    claim(verb.example, "%s --help shows an example" % verb.name)
    with open("/dev/full", "wb") as full:
        done = run(verb.name, "--help", stdout=full)
    claim(done.returncode == 2 and b"standard output" in done.stderr, "%s --help on a full disk" % verb.name, done)


def check_example(verb, folder):
    done = run(*verb.words(), cwd=folder)
    claim(done.returncode in (0, 1) and not done.stderr, "the example of %s works" % verb.name, done)


def check_wrong_use(verb):
    done = run(verb.name, "--no-such-option")
    claim(done.returncode == 2, "%s: a wrong option has status 2" % verb.name, done)
    claim(not done.stdout, "%s: a wrong option prints nothing" % verb.name)
    claim(done.stderr.startswith(b"velmara: " + verb.name.encode() + b": ") and b"--help" in done.stderr,
          "%s: a wrong option gets a line that says where to look" % verb.name, done)
    claim(done.stderr.count(b"\n") == 1, "%s: the complaint is one line" % verb.name, done)


def check_input(verb, folder):
    if not verb.reads():
        return
    for words in (["-"], ["--", "-"]):
        with open(folder / verb.mail(), "rb") as mail:
            done = run(verb.name, *verb.output(), *words, *verb.further(), stdin=mail, cwd=folder)
        claim(done.returncode in (0, 1) and not done.stderr, "%s %s: reads standard input" % (verb.name, words), done)
    done = run(verb.name, *verb.output(), "--", verb.mail(), *verb.further(), cwd=folder)
    claim(done.returncode in (0, 1) and not done.stderr, "%s --: what follows is no option" % verb.name, done)
    unreadable = os.open(folder, os.O_RDONLY)
    done = run(verb.name, *verb.output(), "-", *verb.further(), stdin=unreadable, cwd=folder)
    os.close(unreadable)
    claim(done.returncode == 2 and b"directory" in done.stderr, "%s: standard input that cannot be read" % verb.name, done)


def check_missing_file(verb, folder):
    if not set(verb.reads()) & {"FILE", "PATH"}:
        return
    done = run(verb.name, *verb.output(), "/nowhere/a\033.eml", *verb.further(), cwd=folder)
    claim(done.returncode == 2, "%s: a missing file has status 2" % verb.name, done)
    claim(b"/nowhere/a\\x1B.eml: No such file" in done.stderr, "%s: a missing file is named" % verb.name, done)
    claim(b"\033" not in done.stderr, "%s: a name of a file moves no cursor" % verb.name, done)


def check_broken_mail(verb, folder):
    if "FILE" not in verb.reads() or verb.name == "group":  # which reads results of scan
        return
    for name, mail in (("nothing", b""), ("zeros", bytes(300)), ("bytes", bytes(range(256)) * 9),
                       ("a cut header", b"Content-Type: multipart/mixed; boundary=a\n\n--a\nContent-T")):
        (folder / "broken.eml").write_bytes(mail)
        done = run(verb.name, *verb.output(), "broken.eml", *verb.further(), cwd=folder)
        claim(done.returncode in (0, 1) or (verb.name == "body" and b"part 1 is a multipart" in done.stderr),
              "%s: a mail of %s is no error" % (verb.name, name), done)


def check_full_disk(verb, folder):
    words = verb.words()
    if verb.writes():
        words[words.index("-o") + 1] = "/dev/full/no-folder"
        done = run(*words, cwd=folder)
        claim(done.returncode == 2 and b"/dev/full/no-folder" in done.stderr, "%s: a file that cannot be written" % verb.name, done)
    if verb.needs_output():
        return
    words = verb.printing()
    with open("/dev/full", "wb") as full:
        done = run(*words, cwd=folder, stdout=full)
    claim(done.returncode == 2, "%s on a full disk has status 2" % verb.name, done)
    claim(b"standard output" in done.stderr, "%s on a full disk says so" % verb.name, done)
    done = run(*words, cwd=folder, preexec_fn=lambda: os.close(1))
    claim(done.returncode == 2, "%s without a standard output has status 2" % verb.name, done)


def check_broken_pipe(verb, folder):
    if verb.needs_output():
        return
    reader, writer = os.pipe()
    os.close(reader)
    done = run(*verb.printing(), cwd=folder, stdout=writer)
    os.close(writer)
    claim(done.returncode == -signal.SIGPIPE and not done.stderr, "%s ends quietly with its reader" % verb.name, done)


def end_by_interrupt(process, what):
    process.send_signal(signal.SIGINT)
    try:
        errors = process.communicate(timeout=20)[1]
    except subprocess.TimeoutExpired:
        process.kill()
        errors = process.communicate()[1] + b"still running"
    claim(process.returncode == -signal.SIGINT and not errors, what, process.returncode, errors)


def check_interrupt(verb, folder):
    if not verb.reads():
        return
    process = subprocess.Popen([VELMARA, verb.name, *verb.output(), "-", *verb.further()], cwd=folder, stdin=subprocess.PIPE,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    process.stdin.write(b"{" if verb.name == "group" else b"Subject: a\n\nhalf of a mail")
    process.stdin.flush()
    time.sleep(0.2)  # that it may have begun; interrupted ahead of that, it has to end likewise
    end_by_interrupt(process, "%s ends quietly when interrupted while it reads" % verb.name)


def check_interrupt_of_output(folder):
    """A pipe that nobody empties holds the command in the middle of its output."""
    (folder / "long.eml").write_bytes(b"Content-Type: text/plain\n\n" + b"words " * 200000)
    process = subprocess.Popen([VELMARA, "text", "long.eml", "long.eml"], cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    select.select([process.stdout], [], [], 20)
    time.sleep(0.2)
    end_by_interrupt(process, "long output ends quietly when interrupted")


def on_terminal(words, folder, **environment):
    """What a terminal would get."""
    master, slave = pty.openpty()
    fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 100, 0, 0))
    process = subprocess.Popen([VELMARA, *words], cwd=folder, stdin=subprocess.DEVNULL, stdout=slave, stderr=slave,
                               env={**os.environ, "TERM": "xterm", **environment})
    os.close(slave)
    printed = b""
    while True:
        try:
            block = os.read(master, 65536)
        except OSError:  # the other side is closed
            break
        if not block:
            break
        printed += block
    os.close(master)
    process.wait(60)
    return printed


def check_colour(verb, folder):
    words = verb.words() if verb.needs_output() else verb.printing()
    forbidden = on_terminal(words, folder, NO_COLOR="1")
    claim(not re.search(rb"\033\[[0-9;]*m", forbidden), "%s: NO_COLOR forbids colour" % verb.name, forbidden)
    claim(b"\033" not in run(*words, cwd=folder).stdout, "%s: no colour on a pipe" % verb.name)


def check_command():
    for words, status in (((), 2), (("nonsense",), 2), (("--json",), 2), (("--help",), 0), (("--version",), 0)):
        claim(run(*words).returncode == status, "velmara %s: status %d" % (" ".join(words), status))
    claim(re.fullmatch(rb"velmara \d+\.\d+\.\d+\n", run("--version").stdout), "--version is one line")
    for option in ("--help", "--version"):
        with open("/dev/full", "wb") as full:
            claim(run(option, stdout=full).returncode == 2, "%s on a full disk has status 2" % option)
    claim(run("--help").stdout.count(b"Example:") == 1, "--help shows an example")


def main():
    # What is started in the background of a script has interrupts ignored, and so has all that it starts.
    signal.signal(signal.SIGINT, signal.default_int_handler)
    names = verbs()
    if len(names) < 13:
        sys.exit("conventions: only %d verbs in the help" % len(names))
    check_command()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        files_of_examples(folder)
        claim(b"\033[" in on_terminal(["tree", "mail.eml"], folder, NO_COLOR=""), "tree uses colour on a terminal")
        check_interrupt_of_output(folder)
        for verb in map(Verb, names):
            check_help(verb)
            check_wrong_use(verb)
            check_input(verb, folder)
            check_missing_file(verb, folder)
            check_broken_mail(verb, folder)
            check_interrupt(verb, folder)
            if verb.example:
                for check in (check_example, check_full_disk, check_broken_pipe, check_colour):
                    check(verb, folder)
    sys.exit(1 if failures else 0)


main()
