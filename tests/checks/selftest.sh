#!/usr/bin/env bash
# The self-test holds here, its fingerprint is of what it prints, and it tells when something is wrong.
. "$(dirname "${BASH_SOURCE[0]}")/../support/check.sh"

"$velmara" selftest >"$work/text" || wrong "status $?"
own=$(sed -n 's/^fingerprint  *//p' "$work/text")
[[ $own =~ ^[0-9a-f]{32}$ ]] || wrong "the fingerprint is \"$own\""
computed=$(grep -v '^fingerprint ' "$work/text" | sed 's/   *\([^ ]*\)$/\t\1/' | md5sum | cut -d' ' -f1)
[ "$own" = "$computed" ] || wrong "the fingerprint is not the MD5 of the components, $computed"
md5=$(md5sum <build/data/var/spool/etc/shared_mime_info.xml | cut -d' ' -f1)
grep -q "^type database  *$md5\$" "$work/text" || wrong "the type database is not $md5"

"$velmara" selftest --json >"$work/json" || wrong "--json: status $?"
python3 - "$work/json" "$own" <<'PYTHON' || wrong "--json is not what it should be"
import json, sys
it = json.loads(open(sys.argv[1], "rb").read().decode("utf-8"))
assert it["fingerprint"] == sys.argv[2]
assert it["components"][0]["name"] == "library" and it["components"][-1]["name"] == "vectors"
assert len(it["vectors"]) >= 12 and all(v["holds"] and v["expected"] == v["given"] for v in it["vectors"])
PYTHON

# A library that has lost its MD5: no signature depends on the bytes.
echo 'void MD5Update(void* context, void const* bytes, unsigned long n) { (void)context, (void)bytes, (void)n; }' >"$work/deaf.c"
gcc -shared -fPIC -o "$work/deaf.so" "$work/deaf.c" || wrong "the broken library cannot be made"
status=0
LD_PRELOAD=$work/deaf.so "$velmara" selftest >"$work/broken" || status=$?
[ "$status" -eq 1 ] || wrong "vectors that fail: status $status, not 1"
grep -qx 'failed: signature: PNG' "$work/broken" || wrong "a vector that fails is not named"
grep -A2 'failed: signature: binary' "$work/broken" | grep -q 'expected 0f343b0931126a20f133d67c2b018a3b' ||
    wrong "what a vector should have given is not shown"
! grep -q 'failed: tree' "$work/broken" || wrong "a vector that holds is said to fail"

# Another ICU: nothing fails, but the sites can see that they differ.
echo 'void u_getVersion_'"$(sed -n 's/^ICU  *\([0-9]*\)\..*/\1/p' "$work/text")"'(unsigned char* v) { v[0] = 9; v[1] = 8; v[2] = v[3] = 0; }' >"$work/icu.c"
gcc -shared -fPIC -o "$work/icu.so" "$work/icu.c" || wrong "the other ICU cannot be made"
LD_PRELOAD=$work/icu.so "$velmara" selftest >"$work/other" || wrong "with another ICU: status $?"
grep -q '^ICU  *9\.8$' "$work/other" || wrong "the version of ICU is not that which runs"
[ "$(sed -n 's/^fingerprint  *//p' "$work/other")" != "$own" ] || wrong "another ICU does not change the fingerprint"

exit $failed
