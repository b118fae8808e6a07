#!/usr/bin/env bash
# Man pages and completions: roff has nothing to say against a page, every verb and option of --help stands in
# page and completion, and bash completes with them.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
export LC_ALL=C.UTF-8 MANWIDTH=80 MANROFFSEQ='' MANPAGER=cat
share=$PWD/build/release/share
failed=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
complain() {
    echo "manual: $*" >&2
    failed=1
}

# options_of PROGRAM [VERB]: the long options that the help lists.
options_of() { "$@" --help | sed -nE 's/^ +(-h,)?(--[a-z0-9-]+).*/\2/p'; }
verbs_of() { "$1" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p'; }

# completed PROGRAM WORD...: what bash offers for the last word, a candidate a line.
completed() {
    bash -c '. "$0/bash-completion/completions/$1" && COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) &&
        "_${1//-/_}" && printf "%s\n" "${COMPREPLY[@]}"' "$share" "$@"
}
offers() {
    local wanted=$1
    shift
    completed "$@" | grep -qxF -- "$wanted" || complain "after \"$*\" bash does not offer $wanted"
}

check_page() {
    local name=$1 page="$share/man/man1/$1.1"
    man --warnings -E UTF-8 -l -Tutf8 "$page" 2>"$work/warnings" | sed 's/.\x08//g' >"$work/text"
    [ ! -s "$work/warnings" ] || complain "man about $name.1: $(cat "$work/warnings")"
    groff -ww -man -Tutf8 -z "$page" 2>"$work/warnings"
    [ ! -s "$work/warnings" ] || complain "groff about $name.1: $(cat "$work/warnings")"
    [ "$(wc -l <"$work/text")" -gt 20 ] || complain "$name.1 renders to nothing"
    ! grep -q ' $' "$page" || complain "$name.1 has blanks at line ends"
    ! grep -qE '\\[A-Za-z(]' "$work/text" || complain "$name.1 shows an escape: $(grep -E '\\[A-Za-z(]' "$work/text" | head -1)"
    man -l --whatis "$page" >/dev/null 2>&1 || lexgrog "$page" >/dev/null || complain "$name.1 has no line for whatis"
}
says() { grep -qF -- "$1" "$work/text" || complain "\"$1\" is not in $2.1"; }

check_program() {
    local name=$1 program="build/release/bin/$1" verb option
    check_page "$name"
    bash -n "$share/bash-completion/completions/$name" || complain "the completion of $name is no bash"
    [ -n "$(options_of "$program")" ] || complain "no options in the help of $name"
    for option in $(options_of "$program"); do
        says "$option" "$name"
        offers "$option" "$name" "$option"
    done
    for verb in $(verbs_of "$program"); do
        says "$name $verb" "$name"
        offers "$verb" "$name" "${verb:0:1}"
        # the section of the verb alone
        sed -n "/^   $verb\$/,/^   [a-z]*\$/p;" "$work/text" >"$work/section"
        for option in $(options_of "$program" "$verb"); do
            grep -qF -- "$option" "$work/section" || complain "\"$option\" of $verb is not in $name.1"
            offers "$option" "$name" "$verb" "$option"
        done
    done
}

check_program velmara
says "velmara tree --headers mail.eml" velmara
says "NO_COLOR" velmara
[ "$(verbs_of build/release/bin/velmara | wc -l)" -ge 13 ] || complain "hardly a verb in the help of velmara"
offers gif velmara sign --as g
[ -z "$(completed velmara sign --as x)" ] || complain "bash offers a kind that there is not"
[ -z "$(completed velmara tree mail)" ] || complain "bash offers something else than files"
check_program velmara-dict
says "--words" velmara-dict

exit $failed
