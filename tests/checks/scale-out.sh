#!/usr/bin/env bash
# The first recipe of docs/scale-out.md, as it stands there, with local slots for machines: its merged output is
# that of one run.
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
root=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/archive" "$work/results" "$work/home"
tests/support/make-mails.py 300 "$work/archive/files"
tests/support/make-mails.py --start 300 200 >"$work/archive/rest.mbox"
echo "4/:" >"$work/hosts" # no ssh

recipe=$(sed -n '/^## GNU parallel/,/^## A Slurm/p' docs/scale-out.md | sed -n '/^```sh/,/^```/p' | grep -v '^```')
cd "$work"
export PATH="$root/build/release/bin:$PATH" HOME="$work/home"
bash -euc "$(printf '%s' "$recipe" | sed "s,/archive,archive,g; s,/results,results,g")" 2>err || { cat err >&2; exit 1; }
velmara scan -j 2 -o one archive
[ "$(wc -l <one)" -eq 500 ] || { echo "scale-out: $(wc -l <one) lines of 500 mails" >&2; exit 1; }
[ "$(find results -name '*.ndjson' -size +0 | wc -l)" -eq 16 ] || { echo "scale-out: not every shard has a part" >&2; exit 1; }
cmp one results/all || { echo "scale-out: the shards together are not what one run writes" >&2; exit 1; }
