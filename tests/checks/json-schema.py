#!/usr/bin/env python3
"""Every line of JSON that the command prints fits docs/velmara.schema.json, is UTF-8, and gives lost bytes
beside; every field of the schema comes up, and docs/json.md tells of it. `json-schema.py --write` brings the
tables of docs/json.md up to the schema."""
import base64
import json
import pathlib
import re
import subprocess
import sys
import tempfile

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[2]
VELMARA = ROOT / "build/release/bin/velmara"
SCHEMA = json.loads((ROOT / "docs/velmara.schema.json").read_text())
PAGE = ROOT / "docs/json.md"
DEFINITIONS = SCHEMA["$defs"]

# Options with which a verb says most; those that are not here have none.
OPTIONS = {"tree": [[], ["--headers"]], "headers": [["--all"], ["--raw", "--all"]], "type": [[], ["--explain"]],
           "route": [["--trusted", "192.0.2.0/24"]], "group": [["--min", "1"]], "sign": [["--show-extract"]] + [["--as", kind, "--show-extract"] for kind in (
               "html", "text", "png", "gif", "jpeg", "binary")]}

HOSTILE = {
    "empty": b"",
    "zeros": bytes(5000),
    "every-byte": bytes(range(256)) * 8,
    "headers": b"Subject: \xff\x00\xed\xa0\x80\x1b[31m\xe2\x80\xae\nFrom: \"\xfe\" <a\xff@b.example>, =?x?q?=FF?= <c@d.example>\n"
               b"Message-ID: <\xff@a>\nReferences: <\xff@a> <b@c>\nList-Id: \xff <a.example>\nList-Help: <http://\xff.example/\xfe>\n"
               b"Received: from \xff (\xfe [192.0.2.1]) by \xfd with \xfc; Mon, 1 Jan 2024 00:00:00 +0000\n"
               b"Received: from a by b; \xff\nX\xff: \xff\n"
               b"Content-Type: te\xffxt/pl\xfein; charset=\"\xff\"; name=\"\xff\"; boundary=\"\xff\"\n"
               b"Content-Disposition: attachment; filename=\"\xff/../a\x00\"\nContent-Transfer-Encoding: \xffbase64\n\n\xff\n",
    "parts": b"From: a@b.example\nSender: a@b.example\nReply-To: a@b.example\nTo: a@b.example\nCc: A <a@b.example>\n"
             b"Subject: s\nMessage-ID: <1@a>\nDate: Mon, 1 Jan 2024 00:00:00 +0000\nContent-Type: multipart/mixed; boundary=b\n\n"
             b"preamble \xff\n--b\xff\nContent-Type: text/html; charset=utf-8\nContent-ID: <\xff>\n\n"
             b"<p>\xff\xed\xa0\x80<a href=\"http://\xff.example/\xfe\">www.bank\xff.example</a> <a href=http://a.example>www.bank.example</a>"
             b"<font color=white>\xfe hidden</font><img src=\"cid:\xff\" width=1><img src=\"\xff\">" + b"words " * 40 +
             b"\n--b\nContent-Type: text/plain; charset=utf-8\n\n" + b"the weather is fine today \xff\xfe\n" * 20 +
             b"--b\nContent-Type: text/plain; charset=no-such-set\n\n\xff\n"
             b"--b\nContent-Type: image/png; name=a.gif\nContent-Disposition: inline; filename=\"\xff\"\n"
             b"Content-Transfer-Encoding: base64\n\niVBORw0KGgo=\n"
             b"--b\nContent-Type: message/rfc822\n\nSubject: \xff\n\n\xff\n--b--\nepilogue \xff\n",
    "cut": b"Content-Type: multipart/mixed; boundary=a\nContent-Type: text/html\n\n--a\nContent-T",
    "deep": b"".join(b"Content-Type: multipart/mixed; boundary=b%d\n\n--b%d\n" % (i, i) for i in range(110)) + b"\n\xff",
    "\xff\x1b[31m-name.docx".encode("latin-1").decode("utf-8", "surrogateescape"): b"PK\003\004",
    "lines": b"550 5.7.1 \xff\n250 ok\n\xff\x00\nhttp://\xff.example/\xfe http://user@0x7f.1/\xff mailto:a@b.example\n",
}
TYPES = b"""<mime-info><mime-type type="application/zip"><magic priority="60">
<match type="string" value="PK" mask="0xffff" offset="0:4"><match type="string" value="\\003\\004" offset="2"/></match></magic>
<glob pattern="*.docx"/></mime-type></mime-info>"""

failures = []
seen = set()  # (definition, field)


def complain(*words):
    failures.append(words)
    print("json:", *words, file=sys.stderr)


def output_of(*words, **more):
    done = subprocess.run([VELMARA, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=300, **more)
    if done.returncode not in (0, 1):
        complain(words, "status", done.returncode, done.stderr)
    return done.stdout


# ---- what a line has to fit ---------------------------------------------------------------------

def check_lost(value, lost, where):
    """`lost` gives exactly the bytes of the strings of `value` that are no UTF-8."""
    if isinstance(value, list):
        if not isinstance(lost, list) or len(lost) != len(value):
            return complain(where, "of another length than the array beside")
        for one, other in zip(value, lost):
            if other is not None:
                check_lost(one, other, where)
        return None
    raw = base64.b64decode(lost, validate=True)
    try:
        raw.decode("utf-8")
        return complain(where, "though nothing was lost")
    except UnicodeDecodeError:
        if raw.decode("utf-8", "replace") != value:
            complain(where, "is not what the text beside was made from")
    return None


def check_objects(value, where):
    if isinstance(value, list):
        for one in value:
            check_objects(one, where)
    if isinstance(value, dict):
        for name, one in value.items():
            if name.endswith("Base64"):
                check_lost(value.get(name[:-6]), one, where + " " + name)
            check_objects(one, where + " " + name)


def note_fields(value, definition):
    """Which fields of which definition came up."""
    definition = resolved(definition, value)
    if isinstance(value, dict):
        name = next((n for n, d in DEFINITIONS.items() if d is definition), None)
        for field, one in value.items():
            seen.add((name, field))
            if field in definition.get("properties", {}):
                note_fields(one, definition["properties"][field])
    elif isinstance(value, list) and "items" in definition:
        for one in value:
            note_fields(one, definition["items"])


def resolved(definition, value):
    while "$ref" in definition or "anyOf" in definition:
        if "$ref" in definition:
            definition = DEFINITIONS[definition["$ref"].rpartition("/")[2]]
        else:
            definition = next((d for d in definition["anyOf"] if validator(d).is_valid(value)), {})
    return definition


def validator(definition):
    return jsonschema.Draft202012Validator({**definition, "$defs": DEFINITIONS})


def check_lines(verb, output, where, valid=None):
    lines = output.split(b"\n")
    if lines.pop() != b"":
        complain(where, "the last line has no end")
    check = valid or validator({"$ref": "#/$defs/" + verb})
    for line in lines:
        if re.search(rb"[\0-\x1f\x7f]|\xc2[\x80-\x9f]|\xe2\x80[\xa8-\xae]", line):
            complain(where, "a control character in the line", line)
        value = json.loads(line.decode("utf-8"))
        if list(value)[:2] != ["schema", "fingerprint"]:
            complain(where, "begins with", list(value)[:2])
        for error in check.iter_errors(value):
            complain(where, "/".join(map(str, error.absolute_path)), error.message[:300])
        check_objects(value, where)
        note_fields(value, {"$ref": "#/$defs/" + verb})
        yield value


# ---- verbs --------------------------------------------------------------------------------------

def help_of(*words):
    return output_of(*words, "--help").decode()


def verbs_with_json():
    listed = re.findall(r"^  ([a-z-]+)", help_of().partition("Subcommands:\n")[2].partition("\n\n")[0], re.M)
    return [verb for verb in listed if "--json" in help_of(verb)]


def check_verb(verb, files, folder):
    usage = re.search(r"^Usage: .*", help_of(verb), re.M).group(0)
    for options in OPTIONS.get(verb, [[]]):
        words = [verb, "--json", *options]
        if verb == "group":
            words += [folder / "archive.ndjson"]
        if re.search(r"TEXT|LINE", usage):
            for file in files:
                list(check_lines(verb, output_of(*words, "-", input=file.read_bytes()), " ".join(map(str, words))))
        else:
            takes_files = "FILE" in usage and verb != "group"
            output = output_of(*words, *(files if takes_files else []))
            values = list(check_lines(verb, output, " ".join(map(str, words))))
            if takes_files and len(values) != len(files):
                complain(verb, "not one line a file")
            if verb == "tree":
                for value, file in zip(values, files):
                    check_places(value["root"], file.read_bytes())


def check_places(part, data):
    """The numbers of a part lead to its bytes."""
    if "sourcePosition" in part:
        body = part["sourcePosition"] + part["hlen"]
        if not part["sourcePosition"] <= body <= len(data) or (part["blen"] or 0) > len(data) - body:
            complain("tree: part", part["path"], "lies outside of the message")
        for header in part.get("headers", [])[:1]:
            if not data[part["sourcePosition"]:].lstrip(b"\r\n").startswith(header["name"].encode()[:1]):
                complain("tree: part", part["path"], "does not begin with its first header")
    for child in part.get("children", []):
        check_places(child, data)


def check_scan(files, folder):
    (folder / "archive.ndjson").write_bytes(output_of("scan", *files))
    list(check_lines("scan", (folder / "archive.ndjson").read_bytes(), "scan"))
    mails = b"".join(b"From a@b.example Mon Jan  1 00:00:00 2024\n" + file.read_bytes() + b"\n" for file in files)
    (folder / "archive.mbox").write_bytes(mails)
    subprocess.run(["tar", "-C", folder, "-cf", folder / "archive.tar", "parts"], check=True)
    for words in (["archive.mbox"], ["archive.tar"], ["--max-bytes", "500", "archive.mbox"], ["--max-parts", "1", "archive.mbox"],
                  ["--max-items", "3", "archive.mbox"]):
        list(check_lines("scan", output_of("scan", *words, cwd=folder), "scan " + " ".join(words)))


def check_all_fields_came_up(but):
    for name, definition in DEFINITIONS.items():
        for field in definition.get("properties", {}):
            if (name, field) not in seen and field not in but:
                complain("no line had", field, "of", name)


# ---- docs/json.md -------------------------------------------------------------------------------

def linked(name):
    return "[%s](#%s)" % (name, name.lower())


def type_of(definition):
    if "$ref" in definition:
        name = definition["$ref"].rpartition("/")[2]
        return linked(name) if "properties" in DEFINITIONS[name] else {"path": "string", "kind": "string"}.get(name, "array")
    if "anyOf" in definition:
        return " or ".join(dict.fromkeys(type_of(one) for one in definition["anyOf"]))
    if "enum" in definition or "const" in definition:
        return "string" if isinstance(definition.get("enum", [definition.get("const")])[0], str) else "`false`"
    if definition["type"] == "array":
        return "array of " + type_of(definition["items"])
    kinds = definition["type"] if isinstance(definition["type"], list) else [definition["type"]]
    return " or ".join(kinds)


def described(definition):
    if "description" in definition or "$ref" not in definition:
        return definition["description"]
    return DEFINITIONS[definition["$ref"].rpartition("/")[2]]["description"]


def section(name):
    definition = DEFINITIONS[name]
    text = "## %s\n\n%s\n" % (name, definition["description"])
    if "anyOf" in definition:
        return text + "\nEither " + " or ".join(linked(one["$ref"].rpartition("/")[2]) for one in definition["anyOf"]) + ".\n"
    text += "\n| field | type | |\n|---|---|---|\n"
    for field, one in definition["properties"].items():
        if field in ("schema", "fingerprint"):
            continue
        optional = "" if field in definition["required"] else "Optional. "
        text += "| `%s` | %s | %s%s |\n" % (field, type_of(one), optional, described(one))
    return text


def tables():
    verbs = [one["$ref"].rpartition("/")[2] for one in SCHEMA["anyOf"]]
    others = [n for n, d in DEFINITIONS.items() if "properties" in d and n not in verbs]
    return "\n".join(section(name) for name in verbs + sorted(others))


def check_page(write):
    text = PAGE.read_text()
    mark = "<!-- tables -->\n"
    front = text.partition(mark)[0] + mark + "\n"
    if write:
        PAGE.write_text(front + tables())
    elif text != front + tables():
        complain("docs/json.md is not what the schema says; tests/checks/json-schema.py --write brings it up to it")


def main():
    jsonschema.Draft202012Validator.check_schema(SCHEMA)
    if sys.argv[1:] == ["--write"]:
        return check_page(True)
    check_page(False)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for file, data in HOSTILE.items():
            (folder / file).write_bytes(data)
        (folder / "types.xml").write_bytes(TYPES)
        files = [*sorted((ROOT / "samples").glob("*.eml")), *(folder / file for file in HOSTILE)]
        OPTIONS["type"].append(["--explain", "--database", folder / "types.xml"])
        if "scan" in help_of():
            check_scan([file for file in files if file.suffix != ".docx"], folder)  # which is no whole archive
        verbs = verbs_with_json()
        if len(verbs) < 11:
            complain("only", verbs, "have --json")
        for verb in verbs:
            if verb in DEFINITIONS:
                check_verb(verb, files, folder)
            else:
                complain(verb, "is not in docs/velmara.schema.json")
    check_all_fields_came_up([] if "scan" in DEFINITIONS else ["bodyLengthKnown"])  # of messages that are cut
    return 1 if failures else 0


sys.exit(main())
