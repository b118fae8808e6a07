#!/usr/bin/env bash
# An analysis opens its fixed data files and libraries and nothing else, asks for no environment variable and
# writes nothing to standard streams.
set -euo pipefail
work=build/release/bin/velmara_work
out=build/outside
rm -rf "$out"
mkdir -p "$out"
fail() { printf 'outside: %s\n' "$*" >&2; exit 1; }

# Standard streams.
"$work" samples/*.eml >"$out/printed" 2>&1 </dev/null
[ ! -s "$out/printed" ] || fail "it printed: $(head -3 "$out/printed")"

# The environment. First that the shim notices anything at all.
gcc -shared -fPIC -O2 -Wall -Werror tests/programs/getenv-shim.c -o "$out/shim.so" -ldl
printf '#include <stdlib.h>\nint probe(void) { return getenv("VELMARA_PROBE") != 0; }\n' >"$out/probe.c"
printf 'int probe(void);\nint main(void) { return probe(); }\n' >"$out/main.c"
gcc -shared -fPIC "$out/probe.c" -o "$out/libvelmara-probe.so"
gcc "$out/main.c" -o "$out/probe" "$PWD/$out/libvelmara-probe.so"
VELMARA_SHIM=$out/probed LD_PRELOAD=$PWD/$out/shim.so "$out/probe" || fail "the probe failed"
[ "$(cat "$out/probed")" = VELMARA_PROBE ] || fail "the shim does not notice who asks"
VELMARA_SHIM=$out/asked LD_PRELOAD=$PWD/$out/shim.so "$work" samples/*.eml
[ ! -e "$out/asked" ] || fail "it asks for $(sort -u "$out/asked" | tr '\n' ' ')"

# Files.
if ! strace -o "$out/probed.trace" true 2>/dev/null; then
    echo "outside: this machine does not let strace work; opened files were not looked at" >&2
    exit 0
fi
strace -f -qq -e trace=%file,%network -o "$out/trace" "$work" samples/*.eml
data=$PWD/build/data
allowed="^(/etc/ld\.so\.(cache|preload)|/(usr/)?lib(64)?/.*|$PWD/build/release/.*|samples/[a-z-]*\.eml"
allowed+="|$data/var/spool/etc/(shared_mime_info\.xml|dict/.*)|$data/panelweb/antispam/magic/magic\.vmara(\.mgc)?"
allowed+="|/proc/self/fd/[0-9]+" # small tables of the test, in memory
allowed+="|/etc/localtime)$" # of the C library, for the zone of the dates that are written
grep -oE '^[0-9]+ +(open|openat|creat)\(.*' "$out/trace" | grep -vE ' ENOENT ' | grep -oE '"[^"]*"' | tr -d '"' |
    sort -u >"$out/opened"
grep -q shared_mime_info "$out/opened" || fail "the trace shows no data file"
strange=$(grep -vE "$allowed" "$out/opened" || true)
[ -z "$strange" ] || fail "it opens $strange"
if grep -E '(socket|connect)\(' "$out/trace" >&2; then fail "it uses the network"; fi
if grep -E '(unlink|rename|mkdir|creat|chmod|chown|truncate)[a-z0-9]*\(|O_WRONLY|O_RDWR' "$out/trace" >&2; then
    fail "it writes files"
fi
