# What checks of the command share; each sources it first. It goes to the root of the tree, makes a folder
# $work that goes with the check, and leaves it to the check to `exit $failed` at its end.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
velmara=$PWD/build/release/bin/velmara
failed=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

wrong() {
    echo "$(basename "$0" .sh): $*" >&2
    failed=1
}
# expect WHAT STATUS COMMAND...: runs it, keeps its output in $work/out and $work/err.
expect() {
    local what=$1 status=$2 got=0
    shift 2
    "$@" >"$work/out" 2>"$work/err" </dev/null || got=$?
    [ "$got" -eq "$status" ] || { wrong "$what: status $got, not $status"; cat "$work/err" >&2; }
}
