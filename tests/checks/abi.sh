#!/usr/bin/env bash
# No symbol that a release had disappears by accident: those of the build against abi/symbols.txt.
# `tests/checks/abi.sh record` writes the list anew (see docs/abi.md).
#
# Listed are, with their version, the functions and objects that a source file defines, and for each class its table
# of virtual functions and its type information. Other weak symbols are left out: inline functions and what belongs
# to templates come out of each compiler differently, and whoever needs them has a copy.
set -euo pipefail
library=build/release/lib/libvelmara.so
list=abi/symbols.txt

symbols() {
    nm -D --defined-only --with-symbol-versions "$library" | awk '
        # Whether a mangled name, behind its prefix, is one of plain classes: lengths and names, no arguments.
        function plain(rest) {
            while (match(rest, /^[0-9]+/)) rest = substr(rest, RLENGTH + 1 + substr(rest, 1, RLENGTH))
            return rest ~ /^E@@/
        }
        $2 ~ /^[TBDR]$/ || ($3 ~ /^_ZT[VI]N/ && plain(substr($3, 6))) { print $3 }' | LC_ALL=C sort -u
}

if [ "${1:-}" = record ]; then
    symbols >"$list"
    echo "abi: $(wc -l <"$list") symbols recorded in $list" >&2
    exit 0
fi

status=0
# complain WORDS SYMBOLS
complain() {
    [ -n "$2" ] || return 0
    printf 'abi: %s:\n' "$1" >&2
    c++filt <<<"$2" | sed 's/^/    /' >&2
    status=1
}
complain "these symbols are gone, and programs that use them no longer start (docs/abi.md)" \
    "$(LC_ALL=C comm -23 "$list" <(symbols))"
complain "these symbols are new; record them with ./dev abi, and commit the list" \
    "$(LC_ALL=C comm -13 "$list" <(symbols))"
complain "these symbols have no version" \
    "$(nm -D --defined-only --with-symbol-versions "$library" | awk '$3 !~ /@@VELMARA_/ && $2 != "A" { print $3 }')"
exit "$status"
