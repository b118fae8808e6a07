#!/usr/bin/env bash
# `velmara group`: its output to the byte, what it refuses, and that neither memory nor the disk pay for a
# large archive.
. "$(dirname "${BASH_SOURCE[0]}")/../support/check.sh"
complains() { grep -qxF -- "$2" "$work/err" || wrong "$1: \"$2\" is no complaint"; }
silent() { [ ! -s "$work/$2" ] || wrong "$1: something was written to $2"; }

# message NUMBER SENDER SUBJECT TIME PARTS
message() {
    printf '{"schema":"velmara/1","fingerprint":"%032d","source":{"number":%d,"file":"a"},"subject":"%s","time":%d,' 7 "$1" "$3" "$4"
    printf '"from":[{"address":"%s"}],"parts":[%s]}\n' "$2" "$5"
}
offer='{"path":"1","signature":{"kind":"html","signature":"aa","tagTokens":"cc"},"html":{"links":[{"host":"shop.example"},{"host":"img.example"}]}}'
logo='{"path":"2","signature":{"kind":"gif","signature":"bb"}}'
{
    message 1 ann@a.example 'Spring \u001b[31m' 1704067200 "$offer,$logo"
    message 2 bob@a.example 'Summer' 1704067260 "$offer"
    message 3 ann@a.example 'Summer' 1704067100 "$offer,$logo"
    message 4 eve@b.example 'Alone' 1704067100 '{"path":"1","signature":{"kind":"text","signature":"dd"}}'
} >"$work/a.ndjson"
expect "campaigns" 0 "$velmara" group "$work/a.ndjson"
silent "campaigns" err
cmp - "$work/out" <<'TEXT' || wrong "campaigns: not what they should be: $(cat "$work/out")"
4 messages

text signatures: 1 group
3 messages  aa
    dates    2023-12-31 23:58:20 UTC to 2024-01-01 00:01:00 UTC
    from     ann@a.example (2), bob@a.example (1)
    subject  Summer (2), Spring \x1B[31m (1)
    hosts    img.example (3), shop.example (3)

tag tokens: 1 group
3 messages  cc
    dates    2023-12-31 23:58:20 UTC to 2024-01-01 00:01:00 UTC
    from     ann@a.example (2), bob@a.example (1)
    subject  Summer (2), Spring \x1B[31m (1)
    hosts    img.example (3), shop.example (3)

image signatures: 1 group
2 messages  bb
    dates    2023-12-31 23:58:20 UTC to 2024-01-01 00:00:00 UTC
    from     ann@a.example (2)
    subject  Spring \x1B[31m (1), Summer (1)
    hosts    img.example (2), shop.example (2)

link hosts: 2 groups
3 messages  img.example
    dates    2023-12-31 23:58:20 UTC to 2024-01-01 00:01:00 UTC
    from     ann@a.example (2), bob@a.example (1)
    subject  Summer (2), Spring \x1B[31m (1)
    hosts    shop.example (3)
3 messages  shop.example
    dates    2023-12-31 23:58:20 UTC to 2024-01-01 00:01:00 UTC
    from     ann@a.example (2), bob@a.example (1)
    subject  Summer (2), Spring \x1B[31m (1)
    hosts    img.example (3)
TEXT

expect "one kind" 0 "$velmara" group --by image --top 1 "$work/a.ndjson"
[ "$(sed -n 3,7p "$work/out")" = "$(printf '%s\n' 'image signatures: 1 group' '2 messages  bb' \
    '    dates    2023-12-31 23:58:20 UTC to 2024-01-01 00:00:00 UTC' '    from     ann@a.example (2)' \
    '    subject  Spring \x1B[31m (1), and 1 more')" ] || wrong "one kind: $(cat "$work/out")"
expect "two kinds and a least size" 0 "$velmara" group --by text,host --min 3 "$work/a.ndjson"
[ "$(grep -c ' messages  ' "$work/out")" -eq 3 ] || wrong "two kinds and a least size: $(cat "$work/out")"
expect "messages that are alone" 0 "$velmara" group --min 1 --by text "$work/a.ndjson"
grep -qx '1 message  dd' "$work/out" || wrong "a message that is alone: $(cat "$work/out")"
expect "nothing" 0 "$velmara" group /dev/null
[ "$(cat "$work/out")" = "0 messages" ] || wrong "nothing: $(cat "$work/out")"

"$velmara" group - "$work/a.ndjson" <"$work/a.ndjson" >"$work/out" || wrong "standard input: status $?"
grep -qx '6 messages  aa' "$work/out" || wrong "standard input: $(cat "$work/out")"
tac "$work/a.ndjson" >"$work/turned.ndjson"
"$velmara" group --json "$work/a.ndjson" | sed 's/"fingerprint":"[0-9a-f]*"/F/' >"$work/straight"
"$velmara" group --json "$work/turned.ndjson" | sed 's/"fingerprint":"[0-9a-f]*"/F/' | cmp - "$work/straight" ||
    wrong "the order of the lines changes the groups"
[ "$(head -1 "$work/straight")" = '{"schema":"velmara/1",F,"scannedWith":"00000000000000000000000000000007","kind":"text","key":"aa","messages":3,"first":1704067100,"last":1704067260,"senders":{"distinct":2,"most":[{"value":"ann@a.example","messages":2},{"value":"bob@a.example","messages":1}]},"subjects":{"distinct":2,"most":[{"value":"Summer","messages":2},{"value":"Spring \u001b[31m","messages":1}]},"hosts":{"distinct":2,"most":[{"value":"img.example","messages":3},{"value":"shop.example","messages":3}]}}' ] ||
    wrong "json: $(head -1 "$work/straight")"

# The samples as scan reads them.
"$velmara" scan samples >"$work/samples.ndjson" || wrong "the samples cannot be scanned"
"$velmara" scan -j 2 --shard 1/2 samples >"$work/shard1" && "$velmara" scan --shard 0/2 samples >"$work/shard0" || wrong "shards"
expect "the samples" 0 "$velmara" group --json "$work/samples.ndjson"
sort "$work/out" >"$work/whole"
expect "shards of the samples" 0 "$velmara" group --json "$work/shard1" "$work/shard0"
sort "$work/out" | cmp - "$work/whole" || wrong "shards change the groups"
expect "the hosts of the samples" 0 "$velmara" group --by host --min 1 "$work/samples.ndjson"
grep -q '^[0-9]* messages*  www.shop.example$' "$work/out" || wrong "the hosts of the samples: $(cat "$work/out")"
expect "twice the samples" 0 "$velmara" group --by text "$work/samples.ndjson" "$work/samples.ndjson"
grep -qx '2 messages  62c3f32a1358b329f560765d4437d42f' "$work/out" || wrong "twice the samples: $(cat "$work/out")"

# What does not belong together.
sed 's/"fingerprint":"0/"fingerprint":"1/' "$work/a.ndjson" >"$work/b.ndjson"
expect "other data" 2 "$velmara" group "$work/a.ndjson" "$work/b.ndjson"
complains "other data" "velmara: $work/b.ndjson:1: fingerprint 10000000000000000000000000000007, but $work/a.ndjson:1 has 00000000000000000000000000000007: such results cannot be compared; group them apart, or scan again with one version"
silent "other data" out
{ head -2 "$work/a.ndjson"; echo; sed 's,velmara/1,velmara/2,;q' "$work/a.ndjson"; } >"$work/c.ndjson"
expect "another schema" 2 "$velmara" group "$work/c.ndjson"
complains "another schema" "velmara: $work/c.ndjson:4: schema velmara/2, but $work/c.ndjson:1 has velmara/1: such results cannot be compared; group them apart, or scan again with one version"
silent "another schema" out
sed 's,velmara/1,velmara/2,' "$work/a.ndjson" >"$work/d.ndjson"
expect "a schema of the future" 2 "$velmara" group "$work/d.ndjson"
complains "a schema of the future" "velmara: $work/d.ndjson:1: schema velmara/2, but this version reads velmara/1"

# What cannot be read.
{ echo '{"schema":'; cat "$work/a.ndjson"; head -c 100 "$work/a.ndjson"; } >"$work/cut.ndjson"
expect "broken lines" 1 "$velmara" group "$work/cut.ndjson"
complains "broken lines" "velmara: $work/cut.ndjson:1: is no JSON, from byte 11 on"
complains "broken lines" "velmara: $work/cut.ndjson:6: is no JSON, from byte 101 on"
grep -qx '3 messages  aa' "$work/out" || wrong "broken lines cost others"
seq 100000 100099 >"$work/numbers"
expect "no lines of a scan" 1 "$velmara" group "$work/numbers"
[ "$(wc -l <"$work/err")" -eq 11 ] || wrong "no lines of a scan: too many complaints"
complains "no lines of a scan" "velmara: $work/numbers:10: is no line of velmara scan: no JSON object"
complains "no lines of a scan" "velmara: $work/numbers: 90 more lines cannot be read"
expect "missing files" 2 "$velmara" group "$work/nowhere" "$work/a.ndjson" "$work"
complains "missing files" "velmara: $work/nowhere: No such file or directory"
complains "missing files" "velmara: $work: Is a directory"
grep -qx '3 messages  aa' "$work/out" || wrong "missing files cost others"
expect "a kind that is none" 2 "$velmara" group --by nonsense "$work/a.ndjson"
expect "a size that is none" 2 "$velmara" group --min 0 "$work/a.ndjson"

# More than memory holds: 20,000 messages and five times as many.
python3 - "$work" <<'PYTHON' || exit 1
import hashlib, sys
digest = lambda text: hashlib.md5(text.encode()).hexdigest()
line = ('{"schema":"velmara/1","fingerprint":"x","source":{"number":%d},"subject":"offer %d of %d","time":%d,"from":[{"address":"u%d@h%d.example"}],'
        '"parts":[{"signature":{"kind":"text","signature":"%s"}},{"signature":{"kind":"html","signature":"%s","tagTokens":"%s"},'
        '"html":{"links":[{"host":"w%d.example"},{"host":"i%d.example"}]}}]}\n')
for name, n in (("some", 20000), ("many", 100000)):
    with open(sys.argv[1] + "/" + name, "w") as out:
        for i in range(n):
            c = i * 7919 % n // 3
            out.write(line % (i, c, i % 5, i, i % 1000, c % 100, digest("t%d" % c), digest("h%d" % i), digest("g%d" % (c % 500)), c % 5000, c % 90))
PYTHON
mkdir "$work/temporary"
peak() {
    python3 -c 'import resource, subprocess, sys
subprocess.run(sys.argv[2:], check=True, stdout=open(sys.argv[1], "w"))
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)' "$work/out" "$velmara" group --temporary "$work/temporary" "$1"
}
some=$(peak "$work/some") && many=$(peak "$work/many") || wrong "large archives"
[ $((many - some)) -lt 4096 ] || wrong "memory grows with the archive: $some KiB, then $many KiB"
[ "$(sed -n 3p "$work/out")" = "text signatures: 33333 groups" ] || wrong "a large archive: $(sed -n 3p "$work/out")"
grep -qx '201 messages  .*' "$work/out" || wrong "a large archive has not the tag tokens that it should have"

# A full disk, in the form of a limit on the size of files.
(
    trap '' XFSZ
    ulimit -f 1000
    exec "$velmara" group --temporary "$work/temporary" "$work/many" >"$work/out" 2>"$work/err"
)
[ $? -eq 2 ] || wrong "a full disk: status is not 2"
complains "a full disk" "velmara: group: temporary files in $work/temporary: File too large; --temporary names another directory"
silent "a full disk" out
expect "no directory for temporary files" 2 "$velmara" group --temporary "$work/nowhere" "$work/many"
complains "no directory for temporary files" "velmara: group: temporary files in $work/nowhere: No such file or directory; --temporary names another directory"
[ -z "$(ls -A "$work/temporary")" ] || wrong "temporary files are left: $(ls -A "$work/temporary")"

exit $failed
