#!/usr/bin/env bash
# What people read of one message: that `inspect` fits on a screen and marks what is not as it says, and
# that `explain` names places that are right.
. "$(dirname "${BASH_SOURCE[0]}")/../support/check.sh"

holds() {
    grep -qF -- "$1" "$work/out" || { echo "$2: \"$1\" is not in the output" >&2; cat "$work/out" >&2; failed=1; }
}
lacks() {
    ! grep -qF -- "$1" "$work/out" || { echo "$2: \"$1\" is in the output" >&2; cat "$work/out" >&2; failed=1; }
}
# bytes WHAT FILE BEGIN END WANTED: what lies between two places.
bytes() {
    local got
    got=$(tail -c "+$(($3 + 1))" "$2" | head -c "$(($4 - $3))")
    [ "$got" = "$5" ] || { echo "$1: \"$got\" lies there, not \"$5\"" >&2; failed=1; }
}

mail=samples/newsletter.eml
expect "a screen" 0 "$velmara" inspect "$mail"
holds "From        The Shop at the Corner <news@shop.example>" "a screen"
holds "Subject     Spring is here: 30 % off" "a screen"
holds "            relay.mail.example [192.0.2.25] to mx.reader.example, after 3 s" "a screen"
holds "1.2.2  image/png              the same    137  logo.png" "a screen"
holds "Text        Dear Ann, our spring catalogue is here" "a screen"
holds "Links     ! list.shop.example (shows www.shop.example)  https://list.shop" "a screen"
holds "track.example  https://track.example/p.gif?id=4711" "a screen"
holds "Images      120 x 40 from the message <logo@shop.example>" "a screen"
holds "Signatures  1.1          text    62c3f32a1358b329f560765d4437d42f" "a screen"
holds "Findings  ! host-mismatch" "a screen"
[ "$(wc -l <"$work/out")" -le 40 ] || { echo "a screen: more than 40 lines" >&2; failed=1; }
for file in samples/*.eml; do
    expect "$file" 0 "$velmara" inspect "$file"
    python3 - "$work/out" "$file" <<'CHECK' || failed=1
import sys, unicodedata
for line in open(sys.argv[1], encoding="utf-8").read().split("\n"):
    wide = sum(1 + (unicodedata.east_asian_width(c) in "WF") for c in line)
    if wide > 80 or line != line.rstrip(" "):
        sys.exit("%s: a line of %d columns: %s" % (sys.argv[2], wide, line))
CHECK
done

expect "two messages" 0 "$velmara" inspect samples/reminder.eml samples/russian.eml
holds "samples/russian.eml:" "two messages"
expect "a missing file among others" 2 "$velmara" inspect /nowhere.eml samples/reminder.eml
holds "Subject" "a missing file among others"
"$velmara" inspect - <samples/reminder.eml >"$work/out" 2>&1 || { echo "standard input: failed" >&2; failed=1; }
holds "Subject" "standard input"

cat >"$work/odd.eml" <<'MAIL'
From: "boss@bank.example" <x@thief.example>
Subject: =?utf-8?Q?=1B[31mred?=
Content-Type: multipart/mixed; boundary=b

--b
Content-Type: image/png; name=a.png

%PDF-1.4 is no picture
--bc
Content-Type: text/html

<body>seen <font color=white>not seen at all</font></body>
--b--
MAIL
expect "an odd message" 0 "$velmara" inspect "$work/odd.eml"
holds "! 1.1  image/png        application/pdf" "a mismatch"
holds 'Subject     \x1B[31mred' "control characters"
lacks "$(printf '\033')" "colour without a terminal"
holds "Hidden      1.2: 15 bytes of 20 bytes: 15 hidden by colour" "hidden text"

expect "json" 0 "$velmara" inspect --json "$work/odd.eml"
python3 - "$work/out" "$work/odd.eml" <<'CHECK' || { echo "json: see above" >&2; failed=1; }
import json, sys
it = json.loads(open(sys.argv[1], encoding="utf-8").read())
raw = open(sys.argv[2], "rb").read()
parts = {part["path"]: part for part in it["parts"]}
assert it["file"] == sys.argv[2] and it["bytes"] == len(raw)
begin, end = parts["1.1"]["body"]
assert raw[begin:end] == b"%PDF-1.4 is no picture\n", raw[begin:end]
begin, end = parts["1.1"]["ending"]["line"]
assert raw[begin:end] == b"--bc\n" and not parts["1.1"]["ending"]["exact"]
assert parts["1.1"]["type"]["mismatch"] and parts["1.1"]["type"]["detected"] == "application/pdf"
assert {f["code"] for f in it["findings"]} == {"type-mismatch", "delimiter-by-prefix", "hidden-text",
                                               "display-name-address"}, it["findings"]
CHECK

expect "reasons" 1 "$velmara" explain "$work/odd.eml"
holds 'begins with, but is not, the delimiter "--b" of part 1: "--bc"' "reasons"
holds 'type: application/pdf, which is not what is declared: content holds string "%PDF-" at ' "reasons"
holds "decoded: not at all, for no transfer encoding is declared" "reasons"
holds "charset: us-ascii, for none is declared; nothing was lost" "reasons"
holds 'hidden by colour, 255,255,255 on 255,255,255 (distance 0.0): "not seen at all"' "reasons"
holds "signature: none as html: fewer than 64 characters remain of the text" "reasons"
holds "display-name-address in 1 at [0, " "findings"
place=$(sed -n 's/.*delimiter-by-prefix in 1\.1 at \[\([0-9]*\), \([0-9]*\)):.*/\1 \2/p' "$work/out")
# shellcheck disable=SC2086 # two numbers
bytes "the place of a finding" "$work/odd.eml" $place "--bc"
expect "reasons as json" 1 "$velmara" explain --json "$work/odd.eml"
holds '"findings":[{"code":"display-name-address","path":"1"' "reasons as json"
expect "reasons for a clean message" 0 "$velmara" explain samples/reminder.eml
holds "no findings" "reasons for a clean message"
expect "reasons for an encoded body" 0 "$velmara" explain samples/attachments.eml
holds "decoded: from base64, 90 bytes give 61" "reasons for an encoded body"
holds "type: text/plain: name fits *.txt (name-alone)" "reasons for an encoded body"
expect "reasons for a file that is not there" 2 "$velmara" explain /nowhere.eml "$work/odd.eml"

exit $failed
