#!/usr/bin/env bash
# Puts the data files of an installation below a folder: `data/stage-data.sh DEST`. With DEST "/" they
# land where the library looks for them; a developer build looks below build/data.
set -euo pipefail

say() { printf 'stage-data: %s\n' "$*" >&2; }
die() {
    say "$*"
    exit 1
}

[ $# -eq 1 ] && [ -n "$1" ] || die "usage: stage-data.sh DEST"
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
database=${SHARED_MIME_DATABASE:-/usr/share/mime/packages/freedesktop.org.xml}
types=$1/var/spool/etc
magic=$1/panelweb/antispam/magic

[ -r "$database" ] || die "$database cannot be read; install the package shared-mime-info"
command -v file >/dev/null || die "the command \"file\" is missing; install the package file"
mkdir -p "$types" "$magic" || die "cannot create folders below $1"

# A reader must never meet half a file: each is completed beside its place and then renamed.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat "$here"/magic/* >"$work/magic.vmara"
(cd "$work" && file -C -m magic.vmara) 2>"$work/errors" || { cat "$work/errors" >&2; die "the magic file does not compile"; }
[ ! -s "$work/errors" ] || { cat "$work/errors" >&2; die "the magic file has mistakes"; }

place() {
    install -m 644 "$1" "$2.new" && mv -f "$2.new" "$2" || die "cannot write $2"
}
place "$database" "$types/shared_mime_info.xml"
# Asked for magic.vmara, libmagic takes the compiled magic.vmara.mgc; one that another version of it
# compiled it passes over for the text.
place "$work/magic.vmara.mgc" "$magic/magic.vmara.mgc"
place "$work/magic.vmara" "$magic/magic.vmara"
