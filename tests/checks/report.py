#!/usr/bin/env python3
"""A browser that opens the page about a hostile mail runs nothing of it and asks nobody for anything.

A server on this machine notes every request, and every trap of the mail leads to it. That proves
something only if the traps work, so the browser first opens them without the page around them: each
has to be seen there. Then it opens the page, and then the page with the traps put into it as markup,
as if escaping had failed: the policy of the page has to hold alone."""
import base64
import hashlib
import html
import http.server
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import threading

ROOT = pathlib.Path(__file__).resolve().parents[2]
VELMARA = ROOT / "build/release/bin/velmara"
SECONDS = 240  # for one run of the browser, which takes two where nothing else runs
requests = set()


class Recorder(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        requests.add(self.path.lstrip("/"))
        self.send_response(200)
        self.send_header("Access-Control-Allow-Origin", "*")
        kind = {"css": "text/css", "js": "text/javascript"}.get(self.path.rpartition(".")[2], "text/html")
        self.send_header("Content-Type", kind)
        self.end_headers()

    do_POST = do_HEAD = do_OPTIONS = do_GET

    def log_message(self, *_):
        pass


def traps(server):
    """Name of the request that each causes, and the markup. Those that a policy cannot forbid, for they
    leave the page as a whole, stand by themselves."""
    url = lambda name: "%s/%s" % (server, name)
    run = lambda name: "fetch('%s')" % url(name)
    inside = {
        "image": '<img src="%s">',
        "srcset": '<img srcset="%s 1x">',
        "background": '<table background="%s"><tr><td>x</td></tr></table>',
        "style.css": '<link rel="stylesheet" href="%s">',
        "import.css": "<style>@import '%s';</style>",
        "attribute": '<p style="background:url(%s)">x</p>',
        "file.js": '<script src="%s"></script>',
        "frame": '<iframe src="%s"></iframe>',
        "object": '<object data="%s"></object>',
        "embed": '<embed src="%s">',
        "video": '<video src="%s" autoplay></video>',
        "drawing": '<svg width="9" height="9"><image href="%s" width="9" height="9"/></svg>',
    }
    running = {
        "script": "<script>%s</script>",
        "module": '<script type="module">%s</script>',
        "onerror": '<img src="data:," onerror="%s">',
        "onload": '<svg onload="%s"></svg>',
        "ontoggle": '<details open ontoggle="%s">x</details>',
        "onfocus": '<input autofocus onfocus="%s">',
        "title": "<script>document.title='taken';%s</script>",
    }
    leaving = {"refresh": '<meta http-equiv="refresh" content="0;url=%s">'}
    return ({name: markup % url(name) for name, markup in inside.items()} |
            {name: markup % run(name) for name, markup in running.items()},
            {name: markup % url(name) for name, markup in leaving.items()})


def hostile_mail(markup):
    """The traps in every place that a mail has, among bytes that are no text."""
    everything = "".join(markup.values())
    junk = b"\xff\xfe\x00\x1b[31m\xe2\x80\xae\xc3("
    line = everything.replace("\n", " ").encode()
    quoted = everything.replace('"', "'").encode()
    breaking = b"\"'>--></title></style></textarea></pre></script>" + junk
    png = base64.b64decode(b"iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==")
    parts = [
        (b"text/plain; charset=" + quoted[:100], b"7bit", breaking + line),
        (b"text/html; charset=utf-8", b"8bit", breaking + line + html.escape(everything).encode() +
         b"<p style='font-size:0'>" + html.escape(everything).encode() + b"</p><a href='javascript:alert(1)'>" +
         html.escape(everything).encode() + b"</a><a href=\"http://a.example/" + html.escape(everything).encode() +
         b"\">www.b.example</a>"),
        (b"image/svg+xml; name=\"a.svg\"", b"8bit", b"<svg xmlns='http://www.w3.org/2000/svg'>" + line + b"</svg>"),
        (b"image/png; name=\"" + breaking + quoted + b".png\"", b"base64", base64.b64encode(png)),
        (b"image/png; name=b.png", b"8bit", line),
        (b"image/gif\"><script>" + line, b"8bit", b"GIF89a" + line),
    ]
    mail = b""
    for name in (b"Subject", b"From", b"Sender", b"Reply-To", b"To", b"Cc", b"Date", b"Message-ID", b"Received",
                 b"X-\"><script>document.title='taken'</script>", b"X-<img/src=x/onerror=document.title='taken'>"):
        mail += name + b": " + breaking + line + b"\n"
    mail += b"Received: from " + breaking + b" by <script>" + line + b" with " + line + b"; " + line + b"\n"
    encoded = base64.b64encode(breaking + line[:200])
    mail += b"Subject: =?utf-8?B?" + encoded + b"?=\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=cut\n\n"
    mail += breaking + line + b"\n"
    for kind, encoding, body in parts:
        mail += (b"--cut\nContent-Type: " + kind + b"\nContent-Type: text/x-" + line + b"\nContent-Transfer-Encoding: " +
                 encoding + b"\nContent-ID: <" + line + b">\nContent-Disposition: attachment; filename=\"" + breaking +
                 quoted + b"\"\nContent-Disposition: " + line + b"\n\n" + body + b"\n")
    return mail + b"--cut--\n" + breaking + line + b"\n"


class Browser:
    def __init__(self, program, work):
        self.program, self.profile = program, work / "profile"

    def open(self, page, *more):
        """What became of the page; `requests` has what it asked for."""
        requests.clear()
        shutil.rmtree(self.profile, ignore_errors=True)
        command = [self.program, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                   "--disable-background-networking", "--disable-component-update", "--disable-extensions",
                   "--user-data-dir=%s" % self.profile, "--virtual-time-budget=5000", *more, page.as_uri()]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=SECONDS)
        return done.stdout.decode("utf-8", "replace")


def report(mail, page):
    """Status 1 tells of findings, which a hostile mail has."""
    done = subprocess.run([VELMARA, "report", mail, "-o", page])
    if done.returncode not in (0, 1):
        sys.exit("report: `velmara report %s` gives status %d" % (mail, done.returncode))
    return page.read_bytes()


def title_of(document):
    found = re.search(r"<title>(.*?)</title>", document, re.S)
    return html.unescape(found.group(1)) if found else ""


def check_bytes(name, page):
    """What can be told of a page without a browser."""
    text = page.decode("utf-8")  # valid, or this throws
    if re.search(r"[\x00-\x08\x0b-\x1f\x7f-\x9f\u202a-\u202e\u2066-\u2069]", text):
        sys.exit("report: the page about %s has control characters" % name)
    style = re.search(r"<style>(.*?)</style>", text, re.S).group(1)
    digest = base64.b64encode(hashlib.sha256(style.encode()).digest()).decode()
    if "style-src 'sha256-%s';" % digest not in text:
        sys.exit("report: the policy of the page about %s does not name its style" % name)
    for link in re.findall(r'href="(?!#)([^"]*)"', text):
        if link != "data:,":
            sys.exit("report: the page about %s leads to %s" % (name, link))


def must_be_seen(browser, page, markup):
    """Each trap by the request that it causes, and that scripts run at all."""
    page.write_text("<!DOCTYPE html><title>free</title><body>%s" % "".join(markup.values()))
    document = browser.open(page, "--dump-dom")
    missing = set(markup) - requests
    if missing:
        sys.exit("report: nothing forbids the traps %s, and yet they are not seen; this check proves nothing" %
                 ", ".join(sorted(missing)))
    if "title" in markup and title_of(document) != "taken":
        sys.exit("report: nothing forbids scripts, and yet none runs; this check proves nothing")


def must_be_silent(what, browser, page, title):
    document = browser.open(page, "--dump-dom")
    if requests:
        sys.exit("report: %s asks for %s" % (what, ", ".join(sorted(requests))))
    if title not in title_of(document):
        sys.exit("report: the title of %s has become \"%s\"" % (what, title_of(document)))
    if "</article>" not in document:
        sys.exit("report: the browser does not show %s" % what)
    return document


def check_in_browser(browser, work, server):
    inside, leaving = traps(server)
    must_be_seen(browser, work / "trap.html", inside)
    must_be_seen(browser, work / "trap.html", leaving)

    (work / "hostile.eml").write_bytes(hostile_mail(inside | leaving))
    page = report(work / "hostile.eml", work / "hostile.html")
    check_bytes("a hostile mail", page)
    document = must_be_silent("the page about a hostile mail", browser, work / "hostile.html", "message report")
    for found in re.findall(r"<(script|iframe|object|embed|svg|form|input|video|base)\b", document):
        sys.exit("report: the page about a hostile mail has an element <%s>" % found)
    if re.search(r"<[^>]*\son\w+=", re.sub(r'"[^"]*"', '""', document)):
        sys.exit("report: the page about a hostile mail has an event handler")
    if not re.search(r'<img alt="[^"]*" src="data:image/png;base64,', document):
        sys.exit("report: the image of the hostile mail is not shown")

    broken = page.decode().replace("<main id=\"main\">", "<main id=\"main\">" + "".join(inside.values()), 1)
    (work / "broken.html").write_text(broken)
    must_be_silent("a page with markup of the mail in it", browser, work / "broken.html", "message report")


def check_output(work):
    """Where the page goes, and that it is there in full or not at all."""
    sample = ROOT / "samples/broken.eml"
    place = work / "output"
    place.mkdir()
    page = report(sample, place / "a.html")
    for arguments in ([], ["-o", "-"]):
        if subprocess.run([VELMARA, "report", sample, *arguments], stdout=subprocess.PIPE).stdout != page:
            sys.exit("report: standard output gets another page than a file")
    for wrong in (place, place / "none/a.html", pathlib.Path("/dev/full")):
        done = subprocess.run([VELMARA, "report", sample, "-o", wrong], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if done.returncode != 2 or done.stdout or str(wrong).encode() not in done.stderr:
            sys.exit("report: -o %s gives status %d and \"%s\"" % (wrong, done.returncode, done.stderr.decode()))
    if [entry.name for entry in place.iterdir()] != ["a.html"]:
        sys.exit("report: something is left beside the page")


def main():
    if not shutil.which("chromium"):
        sys.exit("report: there is no chromium; apt-get install chromium")
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Recorder)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    with tempfile.TemporaryDirectory() as directory:
        work = pathlib.Path(directory)
        os.environ["HOME"] = directory  # the browser leaves nothing behind
        for sample in sorted((ROOT / "samples").glob("*.eml")):
            check_bytes(sample.name, report(sample, work / "sample.html"))
        check_output(work)
        check_in_browser(Browser("chromium", work), work, "http://127.0.0.1:%d" % server.server_address[1])
    server.shutdown()


main()
