#!/usr/bin/env bash
# Builds the word lists of semantic tokens from word lists that Debian packages:
#   data/stage-words.sh DEST [VELMARA-DICT]
# They land below DEST at the place where the library looks for them ("/" for a real system). A package
# that is not installed leaves its language out. Word numbers depend on these lists and their order:
# installations that compare token strings use the same directory.
set -euo pipefail

say() { printf 'stage-words: %s\n' "$*" >&2; }

[ $# -ge 1 ] && [ -n "$1" ] || { say "usage: stage-words.sh DEST [VELMARA-DICT]"; exit 1; }
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
dict=$1/var/spool/etc/dict
builder=${2:-velmara-dict}

lists=()
# add LIST FORMAT FILE PACKAGE
add() {
    if [ -r "$3" ]; then
        lists+=(--words "$1=$2:$3")
    else
        say "$1 is left out: install the package $4"
    fi
}
add e2i.idx plain /usr/share/dict/american-english wamerican
add jmdict-ja-en.idx edict /usr/share/edict/edict edict
add rus_eng_full.idx hunspell /usr/share/hunspell/ru_RU.dic hunspell-ru
add ara-eng.index dictd /usr/share/dictd/freedict-ara-eng.index dict-freedict-ara-eng
add ara-eng.index hunspell /usr/share/hunspell/ar.dic hunspell-ar

mkdir -p "$(dirname "$dict")"
"$builder" --out "$dict" --tags "$here/html-tags.txt" "${lists[@]}"
