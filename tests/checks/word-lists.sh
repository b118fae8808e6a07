#!/usr/bin/env bash
# The builder of word lists: the same bytes on every run, each format, complaints, nothing half-written.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
builder=$PWD/build/release/bin/velmara-dict
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failed=0
complain() {
    echo "word lists: $*" >&2
    failed=1
}

# words FILE: the words of a list, one a line.
words() { python3 -c 'import sys
data = open(sys.argv[1], "rb").read()
print("\n".join(r[:-4].decode("utf-32le") for r in data.split(b"\n") if r))' "$1"; }
# gives WHAT LIST FORMAT FILE EXPECTED...
gives() {
    local what=$1 list=$2 format=$3 file=$4
    shift 4
    "$builder" --out dict --words "$list=$format:$file" >log 2>&1 || complain "$what: $(cat log)"
    [ "$(words "dict/$list")" = "$(printf '%s\n' "$@")" ] || complain "$what gives: $(words "dict/$list")"
}
refuses() {
    local what=$1 reason=$2 got=0
    shift 2
    rm -rf none
    "$builder" --out none "$@" >log 2>&1 || got=$?
    [ $got -eq 2 ] || complain "$what: status $got, not 2"
    grep -qF -- "$reason" log || complain "$what: says $(cat log)"
    [ -z "$(find . -name 'none*')" ] || complain "$what: something was left behind"
}

printf 'Zebra\napple\r\nzebra\nab\n1st\nwww.x\n::::\nна\xc3\xafve\n' >plain
gives "a plain list" e2i.idx plain plain zebra apple наïve
printf '3\nдом/AB\nотчёт\tpo:noun\nдом/C\n' >u.dic
gives "a hunspell list" rus_eng_full.idx hunspell u.dic дом отчёт
printf '2\nдом/AB\nотчёт\n' | iconv -t koi8-r >k.dic
printf 'SET KOI8-R\n' >k.aff
gives "a hunspell list in the set of its affix file" rus_eng_full.idx hunspell k.dic дом отчёт
printf '00databaseinfo\tA\tB\nكتاب\tLw7Y\tB1\nبيت كبير\tA\tB\n' >a.index
gives "an index" ara-eng.index dictd a.index كتاب
printf '　？？？ /EDICT/\n会議 [かいぎ] /(n) meeting/\nノート /note/\n' >edict
gives "a list with readings" jmdict-ja-en.idx edict edict 会議 かいぎ ノート
iconv -t euc-jp edict >edict-euc
gives "a list with readings in EUC-JP" jmdict-ja-en.idx edict edict-euc 会議 かいぎ ノート
printf '中文\n上海\n北京\n' >zh # 上 is U+4E0A: its byte of 10 would end the record
gives "characters that cannot be stored" xdict-ce-gb.idx plain zh 中文 北京

printf 'b\n# comment\na\n' >tags
for run in one two; do
    "$builder" --out $run --tags tags --words e2i.idx=plain:plain --words e2i.idx=plain:zh >/dev/null || complain "run $run"
done
diff -r one two || complain "two runs differ"
tags=$(od -An -v -tx1 one/html.dict | tr -d " \n")
[ "$tags" = 010000006201000000010000006102000000 ] || complain "html.dict is $tags"

refuses "a missing file" "/nowhere: No such file or directory" --words e2i.idx=plain:/nowhere
refuses "an unknown format" "unknown format" --words e2i.idx=csv:plain
refuses "an unknown list" "reads no list of that name" --words other.idx=plain:plain
refuses "words that are no pair" "NAME=FORMAT:FILE" --words plain
printf 'no count\n' >bad.dic
refuses "a hunspell list without its count" "bad.dic:1: " --words e2i.idx=hunspell:bad.dic
printf 'a\tA\tB\nno tabs\n' >bad.index
refuses "an index without offsets" "bad.index:2: " --words e2i.idx=dictd:bad.index
printf 'fine\n\xff\xfe\n' >bad.txt
refuses "a list that is no text" "bad.txt: is no text in utf-8" --words e2i.idx=plain:bad.txt
printf 'word without meaning\n' >bad.edict
refuses "an entry without meanings" "bad.edict:1: " --words jmdict-ja-en.idx=edict:bad.edict
printf 'two words\n' >bad.tags
refuses "a tag with a blank" "bad.tags:1: " --tags bad.tags

exit $failed
