#!/usr/bin/env bash
# What people and scripts rely on in the command: exit statuses, complaints, JSON, no surprises on a pipe.
. "$(dirname "${BASH_SOURCE[0]}")/../support/check.sh"

holds() {
    grep -qF -- "$2" "$work/$1" || { echo "$3: \"$2\" is not in the output" >&2; cat "$work/$1" >&2; failed=1; }
}
silent() {
    [ ! -s "$work/$1" ] || { echo "$2: something was written to $1" >&2; cat "$work/$1" >&2; failed=1; }
}
# field WHAT EXPRESSION WANTED: evaluates EXPRESSION over the JSON in $work/out, read as `it`.
field() {
    local got
    got=$(python3 -c 'import json,sys
it = json.loads(open(sys.argv[1], "rb").read().decode("utf-8"))
views = {(part["path"], header["name"]): header for part in it.get("parts", []) for header in part.get("headers", [])}
print(json.dumps(eval(sys.argv[2])))' "$work/out" "$2") && [ "$got" = "$3" ] ||
        { echo "$1: $2 is $got, not $3" >&2; failed=1; }
}

expect "no verb" 2 "$velmara"
expect "a wrong verb" 2 "$velmara" nonsense
expect "no file" 2 "$velmara" tree
expect "help" 0 "$velmara" --help
expect "help of a verb" 0 "$velmara" tree --help
holds out "Example:" "help of a verb"
expect "version" 0 "$velmara" --version

expect "a missing file" 2 "$velmara" tree /nowhere/a.eml samples/bounce.eml
holds err "velmara: /nowhere/a.eml: No such file or directory" "a missing file"
holds out "multipart/report" "the file behind a missing one"
expect "a directory" 2 "$velmara" tree samples
holds err "velmara: samples: Is a directory" "a directory"
expect "a broken mail" 0 "$velmara" tree samples/broken.eml
silent err "a broken mail"

for sample in samples/*.eml; do
    expect "json of $sample" 0 "$velmara" tree --json --headers "$sample"
    python3 -c 'import json,sys; json.loads(sys.stdin.buffer.read().decode("utf-8"))' <"$work/out" ||
        { echo "json of $sample does not parse" >&2; failed=1; }
done
expect "json" 0 "$velmara" tree --json samples/*.eml
[ "$(wc -l <"$work/out")" -eq "$(find samples -name '*.eml' | wc -l)" ] || { echo "json: not one line a message" >&2; failed=1; }

"$velmara" tree - <samples/forwards.eml >"$work/piped" 2>&1
"$velmara" tree samples/forwards.eml >"$work/file" 2>&1
cmp -s "$work/piped" "$work/file" || { echo "standard input reads otherwise than the file" >&2; failed=1; }
{ cat samples/newsletter.eml; for _ in $(seq 300); do printf '%0900d\n' 0; done; } >"$work/long.eml"
"$velmara" body "$work/long.eml" 1.1 >"$work/file" 2>&1
"$velmara" body <(cat "$work/long.eml") 1.1 >"$work/piped" 2>&1
cmp -s "$work/piped" "$work/file" || { echo "a pipe reads otherwise than the file" >&2; failed=1; }

expect "a body" 0 "$velmara" body samples/attachments.eml 1.2
printf 'Überblick über das erste Quartal:\r\nUmsatz = 1.234.567 €\r\n' | cmp -s - "$work/out" ||
    { echo "body: the attachment is not what was attached" >&2; failed=1; }
expect "a raw body" 0 "$velmara" body --raw samples/attachments.eml 1.4
holds out "R0lGODlhAQABA" "a raw body"
expect "a path that does not exist" 2 "$velmara" body samples/attachments.eml 1.9
holds err "1.9 does not exist" "a path that does not exist"
silent out "a path that does not exist"
expect "the body of a container" 2 "$velmara" body samples/newsletter.eml 1.2
silent out "the body of a container"

cat >"$work/types.xml" <<'XML'
<mime-info><mime-type type="application/zip">
<magic priority="60"><match type="string" value="PK\003\004" offset="0"/></magic><glob pattern="*.x"/></mime-type>
<mime-type type="x/letter"><sub-class-of type="application/zip"/><glob pattern="*.docx"/></mime-type></mime-info>
XML
printf 'PK\003\004...' >"$work/report.docx"
expect "a type" 0 "$velmara" type --database "$work/types.xml" "$work/report.docx"
holds out "$work/report.docx: x/letter, no code" "a type"
expect "a type explained" 0 "$velmara" type --database "$work/types.xml" --explain "$work/report.docx"
holds out "    name:    x/letter by *.docx, weight 50" "a type explained"
holds out '    content: application/zip by string "PK\x03\x04" at 0, priority 60' "a type explained"
holds out "    because: the content is a container, and the name tells which kind" "a type explained"
expect "types as json" 0 "$velmara" type --database "$work/types.xml" --explain --json "$work/report.docx" "$work/types.xml"
holds out '"type":"x/letter","code":0,"reason":"name-within-container","globs":[{"type":"x/letter","pattern":"*.docx"' \
    "types as json"
holds out '"type":"text/plain","code":23,"reason":"looks-like-text","globs":[],"magic":[]}' "types as json"
"$velmara" type --database "$work/types.xml" - <"$work/report.docx" >"$work/out" 2>&1
holds out "(standard input): application/zip, code 15" "a type without a name"
expect "a missing type database" 2 "$velmara" type --database /nowhere/types.xml "$work/report.docx"
holds err "velmara: type database: /nowhere/types.xml: No such file or directory" "a missing type database"
expect "a broken type database" 2 "$velmara" type --database "$work/report.docx" "$work/report.docx"
holds err "velmara: type database: $work/report.docx: " "a broken type database"
expect "the installed type database" 0 "$velmara" type samples/newsletter.eml
holds out "samples/newsletter.eml: message/rfc822, code 7" "the installed type database"

expect "links" 0 "$velmara" links 'see http://www.bank.example@0x7f.1/login'
holds out "$(printf '127.0.0.1\thttp://www.bank.example@0x7f.1/login')" "links"
expect "links as json" 0 "$velmara" links --json 'mailto:ann@reader.example'
holds out '"uri":"mailto:ann@reader.example","scheme":"mailto","host":"reader.example"}' "links as json"
expect "replies" 0 "$velmara" reply '550 5.7.1 Not today' '199 x'
holds out "class 5, category 5, detail 0, enhanced 5.7.1: 550 5.7.1 Not today" "replies"
holds out "not valid: 199 x" "replies"
expect "names" 0 "$velmara" names
holds out "$(printf '18\t1 Clean\tGrey List')" "names"
expect "names as json" 0 "$velmara" names --json
holds out '{"value":33554432,"name":"Defer Disposition"}' "names as json"

expect "tokens" 0 "$velmara" tokens samples/reminder.eml
cp "$work/out" "$work/tokens"
[ "$(wc -w <"$work/tokens")" -gt 8 ] || { echo "tokens: hardly a word was known" >&2; failed=1; }
expect "tokens of the same words in another layout" 0 "$velmara" tokens samples/reminder-relaid.eml
cmp -s "$work/out" "$work/tokens" || { echo "tokens: the layout changed them" >&2; failed=1; }
expect "tokens as json" 0 "$velmara" tokens --json samples/russian.eml
holds out '"language":"Cyrillic","charset":"koi8-r"' "tokens as json"

expect "signatures" 0 "$velmara" sign samples/newsletter.eml
holds out "1.1 text, 145 of 145 bytes looked at, 87 entered: 62c3f32a1358b329f560765d4437d42f" "signatures"
holds out "no signature: fewer than 128 bytes of pixel data" "a part without a signature"
head -c 1024 /dev/zero >"$work/zeros"
expect "a binary file" 0 "$velmara" sign --as binary --json "$work/zeros"
holds out '"entered":1024,"signature":"0f343b0931126a20f133d67c2b018a3b"' "a binary file"
printf '<p>a<p>b<p>%s<script>hidden</script>' "$(head -c 64 /dev/zero | tr '\0' 'X')" >"$work/page"
expect "an extract" 0 "$velmara" sign --as html --show-extract "$work/page"
holds out "    $(head -c 64 /dev/zero | tr '\0' 'x')ba" "an extract"
expect "a wrong kind" 2 "$velmara" sign --as nonsense "$work/page"

printf 'Subject: \033[31mred\r\nX: \xff\r\n\r\n' >"$work/escape.eml"
expect "control characters" 0 "$velmara" tree --headers "$work/escape.eml"
holds out 'Subject: \x1B[31mred' "control characters"
holds out 'X: \xFF' "bytes that are no UTF-8"

: >"$work/empty.eml"
expect "an empty file" 0 "$velmara" tree "$work/empty.eml"
"$velmara" tree samples/newsletter.eml >/dev/full 2>"$work/err" && { echo "a full disk: status 0" >&2; failed=1; }
holds err "standard output" "a full disk"

expect "headers" 0 "$velmara" headers samples/newsletter.eml
holds out "Subject: Spring is here: 30 % off" "headers"
holds out "List-Unsubscribe: <mailto:out@list.shop.example>" "headers"
cat >"$work/words.eml" <<'MAIL'
From: =?utf-8?B?SsO8cmdlbg==?= <j@a.example>, "B, Ann" <ann@b.example>
Message-ID: <1@a.example>
References: <0@a.example>
 <00@b.example>
List-Id: Readers <list.a.example>
List-Help: <https://a.example/help>, <mailto:help@a.example>
Subject: =?iso-8859-1?Q?Caf=E9?=
Content-Type: multipart/mixed; boundary=b

--b
Content-Type: text/plain; name*0*=utf-8''a%20; name*1=b.txt
Content-Disposition: inline; filename="=?utf-8?Q?=C3=A9.txt?="
Content-Transfer-Encoding: X-UUENCODE

--b--
MAIL
expect "decoded headers" 0 "$velmara" headers "$work/words.eml"
holds out "Subject: Café" "decoded headers"
holds out "From: Jürgen <j@a.example>" "decoded headers"
expect "raw headers" 0 "$velmara" headers --raw "$work/words.eml"
holds out "Subject: =?iso-8859-1?Q?Caf=E9?=" "raw headers"
expect "headers of all parts" 0 "$velmara" headers --all "$work/words.eml"
holds out 'Content-Disposition: inline; filename="é.txt"' "headers of all parts"
expect "typed headers" 0 "$velmara" headers --all --json "$work/words.eml"
field "addresses" 'views["1", "From"]["addresses"]' \
    '[{"address": "j@a.example", "displayName": "J\u00fcrgen"}, {"address": "ann@b.example", "displayName": "B, Ann"}]'
field "ids" 'views["1", "Message-ID"]["ids"] + views["1", "References"]["ids"]' '["1@a.example", "0@a.example", "00@b.example"]'
field "the list" 'views["1", "List-Id"]["domain"]' '"list.a.example"'
field "links of the list" 'views["1", "List-Help"]["uris"]' '["https://a.example/help", "mailto:help@a.example"]'
field "the type" 'views["1.1", "Content-Type"]["attachmentName"]' '"a b.txt"'
field "the boundary" 'views["1", "Content-Type"]["boundary"]' '"b"'
field "the disposition" '[views["1.1", "Content-Disposition"][f] for f in ("disposition", "attachmentName")]' '["inline", "\u00e9.txt"]'
field "the encoding" 'views["1.1", "Content-Transfer-Encoding"]["encoding"]' '"x-uue"'

expect "decode" 0 "$velmara" decode '=?utf-8?B?QUJD?= =?utf-8?B?REVG?=' 'plain' '=?utf-8?Q?=1B[31m?='
printf 'ABCDEF\nplain\n\\x1B[31m\n' | cmp -s - "$work/out" || { echo "decode: not what was encoded" >&2; cat "$work/out" >&2; failed=1; }
printf '=?utf-8?B?QUJD?=\r\n\nlast' | "$velmara" decode >"$work/out"
printf 'ABC\n\nlast\n' | cmp -s - "$work/out" || { echo "decode: lines of standard input" >&2; cat "$work/out" >&2; failed=1; }

expect "a route" 0 "$velmara" route --trusted 192.0.2.0/24 samples/newsletter.eml
cmp -s - "$work/out" <<'ROUTE' || { echo "route: not the drawing of the manual" >&2; cat "$work/out" >&2; failed=1; }
1  from app7.shop.example [198.51.100.7]
│  by   relay.mail.example with ESMTP
│  at   2026-03-03 08:15:01 UTC
│  3 s
2  from relay.mail.example (relay.mail.example) [192.0.2.25] trusted
   by   mx.reader.example with ESMTPS
   at   2026-03-03 08:15:04 UTC
ROUTE
expect "a route as json" 0 "$velmara" route --json --trusted 2001:db8::/32,198.51.100.7 samples/newsletter.eml
field "the hops" '[[hop.get("delay"), hop["trusted"], hop["by"]] for hop in it["hops"]]' \
    '[[null, true, "relay.mail.example"], [3, false, "mx.reader.example"]]'
expect "no route" 0 "$velmara" route samples/broken.eml
holds out 'no "Received" headers' "no route"
expect "a network that is none" 2 "$velmara" route --trusted nonsense samples/newsletter.eml
holds err "nonsense is no network" "a network that is none"
silent out "a network that is none"

# Dates of hops, with the seconds since 1970 that they stand for (null: not readable).
dates=(
    'Mon, 1 Jan 2024 00:00:00 +0000|1704067200'
    '1 Jan 2024 00:00 +0000|1704067200'
    'Mon,1 Jan 2024 01:30:00 +0130 (CET)|1704067200'
    'Sun, 31 Dec 2023 19:00:00 EST|1704067200'
    'Sun (a (nested) comment), 31 Dec 23 16:00:00 PST|1704067200'
    'Thu, 29 Feb 24 00:00:00 GMT|1709164800'
    'Fri, 31 Dec 99 23:59:60 UT|946684800'
    'Sat, 1 Jan 100 00:00:00 GMT|946684800'
    'Thu, 1 Jan 1970 00:00:00 +0000|0'
    'Fri, 30 Feb 2024 00:00:00 +0000|null'
    'Mon, 1 Jan 2024 24:00:00 +0000|null'
    'Mon, 1 Jan 2024 00:00:00 XYZ|null'
    'Mon, 1 Jan 2024 00:00:00 +0060|null'
    'Mon, 1 Jan 2024 00:00:00|null'
    'Mon, 1 Foo 2024 00:00:00 +0000|null'
    'yesterday|null'
    '|null'
)
for row in "${dates[@]}"; do
    printf 'Received: from a by b; %s\n\n' "${row%|*}" >"$work/date.eml"
    expect "the date ${row%|*}" 0 "$velmara" route --json "$work/date.eml"
    field "the date ${row%|*}" 'it["hops"][0].get("time")' "${row##*|}"
done
printf 'Received: from a by c; Mon, 1 Jan 2024 00:00:00 +0000\nReceived: by b; Tue, 2 Jan 2024 01:02:03 +0000\n\n' >"$work/back.eml"
expect "clocks that differ" 0 "$velmara" route "$work/back.eml"
holds out "│  -1 d 1 h" "clocks that differ"
holds out "1  from ?" "a hop without a sender"
holds out "by   b" "the semicolon of the date"
! grep -qF "b;" "$work/out" || { echo "route: the semicolon of the date is shown" >&2; failed=1; }

expect "the text of an analysis" 0 "$velmara" text samples/newsletter.eml
holds out "See it at https://www.shop.example/spring" "the plain part"
holds out "garden chair garden chair cheap cheap" "the HTML part"
! grep -qF "bgcolor" "$work/out" || { echo "text: markup is shown" >&2; failed=1; }
printf '\n\na\033[31m\nb' >"$work/text.eml"
expect "text with control characters" 0 "$velmara" text "$work/text.eml"
holds out 'a\x1B[31m' "text with control characters"
expect "text as json" 0 "$velmara" text --json "$work/text.eml"
field "the text" 'it["text"]' '"\na\u001b[31m\nb"'
cat >"$work/offer.eml" <<'MAIL'
Content-Type: text/html

<body>Your <b>account</b>
<font color=white>garden chair</font><font color=black style="font-size:0">winter coats</font><font size=4>late</font>
<table text=black><tr><td>Sign in at <a href="http://thief.example/login">www.bank.example</a>
<a href="http://shop.example/a">shop.example/a</a></td></tr></table><img src="cid:logo" width="50%" height=40>
MAIL
expect "the view of HTML" 0 "$velmara" html "$work/offer.eml"
holds out "    visible, 0,0,0 on 255,255,255 (distance 191.2), size 3: account" "text that is visible"
holds out "    hidden by colour, 255,255,255 on 255,255,255 (distance 0.0), size 3: garden chair" "text hidden by its colour"
holds out "    hidden by size 0, 0,0,0 on 255,255,255 (distance 191.2), size 0: winter coats" "text hidden by its size"
holds out "    hidden by an earlier size 0, 0,0,0 on 255,255,255 (distance 191.2), size 4: late" "text hidden by an earlier size"
holds out "    link (a) to thief.example: http://thief.example/login" "a link of HTML"
holds out "        its text names another host, www.bank.example: www.bank.example" "a link that lies"
holds out "    image <logo>, 300 x 40, 2 lines of text above, first of its run" "an image of HTML"
expect "the view of HTML as json" 0 "$velmara" html --json "$work/offer.eml"
field "hidden text" '[run["hiddenBy"] for run in it["parts"][0]["runs"] if run["text"].strip() and not run["visible"]]' '["colour", "size", "earlier-size"]'
field "links" '[[link["element"], link["host"], link.get("otherHosts")] for link in it["parts"][0]["links"]]' \
    '[["a", "thief.example", ["www.bank.example"]], ["a", "shop.example", null], ["source", "www.bank.example", null]]'
field "images" '[[image["source"], image["textLine"]] for image in it["parts"][0]["images"]]' '[["<logo>", 2]]'
expect "no HTML" 0 "$velmara" html samples/reminder.eml
silent out "no HTML"

exit $failed
