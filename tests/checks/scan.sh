#!/usr/bin/env bash
# What people rely on in `velmara scan`: one line for each message whatever holds it, the same lines
# whatever the threads and shards, nothing lost or doubled by an interruption, and bad input told of in
# one clear line while the rest is done.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
velmara=$PWD/build/release/bin/velmara
make_mails=$PWD/tests/support/make-mails.py
failed=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r samples "$work/samples"
cd "$work" || exit 2

fail() { echo "$*" >&2; failed=1; }
# expect WHAT STATUS COMMAND...: runs it, keeps its output in out and err.
expect() {
    local what=$1 status=$2 got=0
    shift 2
    "$@" >out 2>err </dev/null || got=$?
    [ "$got" -eq "$status" ] || { fail "$what: status $got, not $status"; cat err >&2; }
}
# told WHAT LINE: that standard error has the line, whole.
told() { grep -qxF -- "velmara: $2" err || { fail "$1: not told \"velmara: $2\", but:"; cat err >&2; }; }
quiet() { [ ! -s err ] || { fail "$1: something was written to standard error"; cat err >&2; }; }
lines() { [ "$(wc -l <out)" -eq "$2" ] || fail "$1: $(wc -l <out) lines, not $2"; }
same() { cmp -s "$2" "$3" || fail "$1: $2 and $3 differ"; }
# sources WHAT WANTED: files (or archive entries), offsets and lengths of the lines in out.
sources() {
    local got
    got=$(python3 -c 'import json
for line in open("out", encoding="utf-8"):
    it = json.loads(line)["source"]
    print(it["number"], it.get("entry", it["file"]), it["offset"], it["length"])')
    [ "$got" = "$2" ] || fail "$1: the lines are of"$'\n'"$got"$'\n'"instead of"$'\n'"$2"
}
# facts: the lines of standard input without their sources, sorted.
facts() { python3 -c 'import json, sys
for line in sorted(json.dumps({k: v for k, v in json.loads(line).items() if k != "source"}) for line in sys.stdin):
    print(line)'; }

from='From a@b.example Fri Jul  8 12:08:34 2011'
"$make_mails" 60 >mails.mbox
"$make_mails" 60 mails
mkdir -p Maildir/cur Maildir/new Maildir/tmp
cp mails/*[0-4].eml Maildir/cur
cp mails/*[5-9].eml Maildir/new
echo unfinished >Maildir/tmp/1
tar -cf mails.tar mails
tar -czf mails.tar.gz mails
(cd mails && zip -q ../mails.zip ./*)
gzip -k mails.mbox

# ---- every kind of input ----

expect "an mbox" 0 "$velmara" scan mails.mbox
quiet "an mbox"
lines "an mbox" 60
facts <out >facts.mbox
for input in mails mails.tar mails.tar.gz mails.zip mails.mbox.gz Maildir; do
    expect "$input" 0 "$velmara" scan "$input"
    quiet "$input"
    facts <out >facts.other
    same "the facts of $input" facts.mbox facts.other
done
"$velmara" scan - <mails.tar.gz 2>err | facts >facts.other
same "the facts of an archive on standard input" facts.mbox facts.other
"$velmara" scan - < <(cat mails.mbox) 2>err | facts >facts.other
same "the facts of an mbox on a pipe" facts.mbox facts.other
"$velmara" scan - <mails.zip 2>err | facts >facts.other
same "the facts of a zip on standard input" facts.mbox facts.other
printf '%s\0' mails/0000000.eml mails/0000001.eml | "$velmara" scan --files0-from - >out 2>err
sources "a list of paths" "0 mails/0000000.eml 0 $(stat -c %s mails/0000000.eml)
1 mails/0000001.eml 0 $(stat -c %s mails/0000001.eml)"
printf 'mails/0000000.eml\0/nowhere' >list
expect "a list with a missing file" 2 "$velmara" scan --files0-from list
told "a list with a missing file" "/nowhere: No such file or directory"
lines "a list with a missing file" 1
expect "a missing list" 2 "$velmara" scan --files0-from /nowhere
told "a missing list" "/nowhere: No such file or directory"
expect "no path" 2 "$velmara" scan
expect "a sample" 0 "$velmara" scan samples/broken.eml
lines "a sample" 1

# ---- threads and shards ----

"$velmara" scan -j 1 mails.mbox mails.zip samples >one 2>err
"$velmara" scan -j 4 mails.mbox mails.zip samples >four 2>err
same "one thread and four" one four
for shard in 0 1 2; do "$velmara" scan -j 2 --shard $shard/3 -o shard$shard mails.mbox mails.zip samples; done
LC_ALL=C sort -m -t: -k5,5n shard0 shard1 shard2 >merged
same "the shards together" one merged
for wrong in 3/3 -1/3 1/-1 0/+2 1 1/0 a/b 1/2x 0/18446744073709551617; do
    expect "shard $wrong" 2 "$velmara" scan "--shard=$wrong" samples
    told "shard $wrong" "--shard $wrong: is not I/N with I from 0 to N - 1"
done

# ---- output files and interruptions ----

"$make_mails" 1500 >many.mbox
"$velmara" scan -j 2 many.mbox -o whole || fail "a scan failed"
[ -f whole ] && [ ! -e whole.part ] && [ ! -e whole.part.json ] || fail "a finished scan left something"
# interrupted SIGNAL STATUS: stops a scan in its middle and goes on with it.
interrupted() {
    local got=0
    rm -f cut cut.part cut.part.json
    # A shell that is no interactive one has what it starts aside ignore SIGINT.
    env --default-signal=INT "$velmara" scan -j 2 many.mbox -o cut 2>err &
    local scan=$!
    while [ ! -s cut.part ] && kill -0 $scan 2>/dev/null; do sleep 0.01; done
    kill "-$1" $scan 2>/dev/null
    wait $scan 2>/dev/null || got=$?
    if [ "$got" -eq 0 ]; then return 1; fi # it was faster than the signal
    [ "$got" -eq "$2" ] || fail "$1: status $got, not $2"
    [ ! -e cut ] || fail "$1: the file has its name though it is not whole"
    if [ "$1" != KILL ]; then quiet "$1"; fi
    if [ "$1" != KILL ]; then [ "$(tail -c 1 cut.part | od -An -c | tr -d ' ')" = '\n' ] || fail "$1: half a line"; fi
    expect "resume with other caps" 2 "$velmara" scan many.mbox -o cut --resume --max-parts 7
    grep -qF 'with other settings (these differ: max-parts)' err || { fail "resume with other caps"; cat err >&2; }
    expect "resume after $1" 0 "$velmara" scan -j 2 many.mbox -o cut --resume
    quiet "resume after $1"
    same "the file resumed after $1" whole cut
}
for signal in "INT 130" "TERM 143" "KILL 137"; do
    for _ in 1 2 3 4 5; do
        # shellcheck disable=SC2086
        interrupted $signal && break
    done || fail "$signal always came too late"
done
(ulimit -f 1000; "$velmara" scan -j 2 many.mbox -o small 2>err) && fail "a full disk: status 0"
told "a full disk" "small.part: File too large"
[ ! -e small ] && [ "$(tail -c 1 small.part | od -An -c | tr -d ' ')" = '\n' ] || fail "a full disk left half a line"
expect "resume on a larger disk" 0 "$velmara" scan many.mbox -o small --resume
same "the file resumed on a larger disk" whole small
(ulimit -f 1000; "$velmara" scan -j 2 many.mbox -o small 2>err)
"$make_mails" --start 1 1499 >shifted.mbox && mv shifted.mbox many.mbox
expect "resume over other input" 2 "$velmara" scan many.mbox -o small --resume
grep -qF "small: the input has changed since it was begun" err || { fail "resume over other input"; cat err >&2; }
expect "a full device" 2 "$velmara" scan samples -o /dev/full
told "a full device" "/dev/full: No space left on device"
"$velmara" scan samples >/dev/full 2>err
[ $? -eq 2 ] || fail "a full device as standard output: not status 2"
told "a full device as standard output" "standard output: No space left on device"
expect "an output in no folder" 2 "$velmara" scan samples -o /nowhere/o
told "an output in no folder" "/nowhere/o.part: No such file or directory"
expect "resume without output" 2 "$velmara" scan --resume samples
set -o pipefail
"$velmara" scan many.mbox 2>err | head -n 1 >/dev/null
[ "${PIPESTATUS[0]}" -eq 141 ] || fail "a closed pipe: status ${PIPESTATUS[0]}"
quiet "a closed pipe"

# ---- mboxes that are not as they should be ----

printf '%s\nA: 1\n\nx\n\nFrom here on it is text\n\n>%s\n\n%s\nB: 2\n\ny\n' "$from" "$from" "$from" >from.mbox
expect "From in a body" 0 "$velmara" scan from.mbox
sources "From in a body" "0 from.mbox 42 77
1 from.mbox 162 8"
head -c 21 from.mbox | tail -c 5 >cut.mbox
tail -c +50 from.mbox >>cut.mbox
expect "an mbox without its beginning" 1 "$velmara" scan cut.mbox
told "an mbox without its beginning" "cut.mbox: begins in the middle of an mbox; what stands in front of its first \"From \" line is taken for a message"
lines "an mbox without its beginning" 2
cp cut.mbox cut.txt
expect "a file that is told to be an mbox" 1 "$velmara" scan --mbox cut.txt
lines "a file that is told to be an mbox" 2
printf '%s\nA: 1\n\nx\0y\0\n\n%s\nB: 2\n' "$from" "$from" >nul.mbox
expect "NULs" 0 "$velmara" scan nul.mbox
sources "NULs" "0 nul.mbox 42 11
1 nul.mbox 96 5"
{ printf '%s\nA: 1\n\n' "$from"; } >huge.mbox
truncate -s 4400000000 huge.mbox
printf '\n\n%s\nB: 2\n\ny\n' "$from" >>huge.mbox
expect "more than 4 GB" 1 "$velmara" scan -j 1 huge.mbox
sources "more than 4 GB" "0 huge.mbox 42 4399999959
1 huge.mbox 4400000044 8"
grep -q '"capped":"bytes"' out || fail "more than 4 GB: the cap is not told"
rm huge.mbox

# ---- caps ----

expect "many parts" 1 "$velmara" scan --max-parts 2 samples/newsletter.eml
grep -q '"capped":"parts"' out || fail "many parts: the cap is not told"
expect "many bytes" 1 "$velmara" scan --max-bytes 100 samples/newsletter.eml mails.tar
[ "$(grep -c '"capped":"bytes"' out)" -eq 61 ] || fail "many bytes: the cap is not told"
{ seq -f 'A%g: 1' 30; echo; } >headers.eml
expect "many headers" 1 "$velmara" scan --max-items 10 headers.eml
grep -q '"capped":"items"' out && grep -q '"A10"' out && ! grep -q '"A11"' out || fail "many headers: the cap is not told"
expect "a size with a unit" 0 "$velmara" scan --max-bytes 1M samples/newsletter.eml
expect "no cap" 0 "$velmara" scan --max-bytes 0 --max-parts 0 --timeout 0 samples/newsletter.eml
expect "a time" 0 "$velmara" scan --timeout 100 samples/newsletter.eml

# ---- what cannot be read, or is no message ----

mkdir -p odd/deep
cp samples/forwards.eml odd/good.eml
cp samples/bounce.eml odd/zz.eml
ln -s . odd/here
ln -s two odd/one
ln -s one odd/two
ln -s ../../odd odd/deep/up
mkfifo odd/fifo
python3 -c 'import socket; socket.socket(socket.AF_UNIX).bind("odd/socket")'
expect "odd files" 2 timeout 20 "$velmara" scan odd
lines "odd files" 2
told "odd files" "odd/fifo: is a FIFO; it was not opened"
told "odd files" "odd/socket: is a socket; it was not opened"
told "odd files" "odd/one: is a loop of links"
told "odd files" "odd/here: leads to a directory that has been scanned, in a loop of links or twice"
told "odd files" "odd/deep/up: leads to a directory that has been scanned, in a loop of links or twice"
expect "a FIFO" 1 timeout 20 "$velmara" scan odd/fifo
expect "a device" 1 timeout 20 "$velmara" scan /dev/zero
told "a device" "/dev/zero: is a device; it was not opened"
expect "a missing file" 2 "$velmara" scan /nowhere samples/bounce.eml
told "a missing file" "/nowhere: No such file or directory"
lines "a missing file" 1
if [ "$(id -u)" -ne 0 ]; then
    cp samples/forwards.eml odd/secret.eml
    chmod 0 odd/secret.eml
    expect "a file without permission" 2 "$velmara" scan odd/secret.eml odd/good.eml
    told "a file without permission" "odd/secret.eml: Permission denied"
    lines "a file without permission" 1
fi
printf 'a name \033[2J\377.eml' | (read -r -d '' name; cp samples/forwards.eml "odd/$name"; "$velmara" scan --mbox "odd/$name" >out 2>err)
grep -q "$(printf '\033')" err out && fail "a file name steers the terminal"

head -c 20000 mails.tar.gz >cut.tar.gz
expect "a truncated archive" 2 "$velmara" scan cut.tar.gz samples/bounce.eml
grep -q '^velmara: cut.tar.gz: .*truncated gzip input' err || { fail "a truncated archive"; cat err >&2; }
tail -n 1 out | grep -q '"file":"samples/bounce.eml"' || fail "the file behind a truncated archive is missing"
head -c 200000 mails.tar >cut.tar
expect "a truncated tar" 2 "$velmara" scan cut.tar
head -c 100000 mails.zip >cut.zip
expect "a truncated zip" 2 "$velmara" scan cut.zip
zip -q -P secret locked.zip samples/bounce.eml
zip -q locked.zip samples/forwards.eml
expect "an encrypted zip" 2 "$velmara" scan locked.zip
told "an encrypted zip" "locked.zip: samples/bounce.eml: is encrypted"
sources "an encrypted zip" "1 samples/forwards.eml 0 $(stat -c %s samples/forwards.eml)"
tar -cf odd.tar odd mails.zip 2>/dev/null
expect "odd entries" 1 "$velmara" scan odd.tar
told "odd entries" "odd.tar: odd/fifo: is a FIFO"
told "odd entries" "odd.tar: odd/here: is a link, which an archive cannot follow"
told "odd entries" "odd.tar: mails.zip: is an archive within an archive"

# ---- the progress line ----

python3 - "$velmara" many.mbox <<'PYTHON' || failed=1
import os, pty, sys
said = b""
def read(terminal):
    global said
    said += os.read(terminal, 4096)
    return b""
pid, terminal = pty.fork()
if pid == 0:
    os.execv(sys.argv[1], [sys.argv[1], "scan", "-o", "shown", sys.argv[2]])
try:
    while True: read(terminal)
except OSError:
    pass
_, status = os.waitpid(pid, 0)
if status != 0 or b" messages, " not in said or b" MB" not in said or not said.endswith(b"\r\x1b[K"):
    sys.exit("progress: status %d and %r" % (status, said))
PYTHON

exit $failed
