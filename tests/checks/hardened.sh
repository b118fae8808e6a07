#!/usr/bin/env bash
# What is delivered was built with the protections that compiler and linker have to offer.
set -euo pipefail
fail() { printf 'hardened: %s\n' "$*" >&2; exit 1; }

# expect FILE WHAT PATTERN TEXT
expect() { grep -qE "$3" <<<"$4" || fail "$1: $2"; }

for file in build/release/lib/libvelmara.so build/release/bin/velmara build/release/bin/velmara-dict; do
    header=$(readelf -hW "$file")
    segments=$(readelf -lW "$file")
    dynamic=$(readelf -dW "$file")
    symbols=$(readelf --dyn-syms -W "$file")
    expect "$file" "is no position-independent program or library" 'Type: +DYN' "$header"
    expect "$file" "has no RELRO segment" 'GNU_RELRO' "$segments"
    expect "$file" "binds symbols late, so RELRO is not full" 'BIND_NOW|FLAGS.*NOW' "$dynamic"
    expect "$file" "has no stack protector" '__stack_chk_fail' "$symbols"
    if grep -q 'GNU_STACK.*RWE' <<<"$segments"; then fail "$file: has an executable stack"; fi
    if grep -qE '\((TEXTREL|RPATH)\)' <<<"$dynamic"; then fail "$file: has text relocations or an RPATH"; fi
done
expect libvelmara.so "no call is fortified" '__(memcpy|vsnprintf|snprintf|strcpy|strncpy|memmove|read|sprintf|fdelt|syslog)_chk' \
    "$(readelf --dyn-syms -W build/release/lib/libvelmara.so)"
for program in velmara velmara-dict; do
    expect "$program" "is no PIE" 'FLAGS_1.*PIE' "$(readelf -dW build/release/bin/$program)"
done

grep -q '_GLIBCXX_ASSERTIONS' cmake/VelmaraCompile.cmake || fail "debug builds have no library assertions"
# On x86-64 each place that can be jumped to is marked. (The mark of the whole file is lost with the first object of
# the C library that has none.)
if [ "$(uname -m)" = x86_64 ]; then
    marks=$(objdump -d --no-show-raw-insn build/release/lib/libvelmara.so | grep -c endbr64 || true)
    [ "$marks" -gt 1000 ] || fail "libvelmara.so: is not built with -fcf-protection"
fi
