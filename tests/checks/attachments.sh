#!/usr/bin/env bash
# The example that saves attachments: whatever a sender calls them, they land in the folder, under names that
# harm nobody, and no file that is there is touched.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
save=$PWD/build/release/bin/example_attachments
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
complain() {
    echo "attachments: $*" >&2
    failed=1
}

# Names as they stand in a header, and what is to come of them.
names=('../../outside' '/etc/passwd' '..\..\outside.exe' '..' '.bashrc' 'a/../b c;rm -rf $(x)' '-rf' 'a%00.txt' '%1B%5B31m')
wanted=(outside passwd outside.exe .. .bashrc b_c_rm_-rf___x_ -rf a_.txt __31m)

mkdir "$work/folder"
{
    printf 'Content-Type: multipart/mixed; boundary=b\n\n'
    for name in "${names[@]}"; do
        printf -- "--b\nContent-Disposition: attachment; filename*=utf-8''%s\n\nthe body\n" \
            "$(python3 -c 'import sys,urllib.parse; print(urllib.parse.quote(urllib.parse.unquote(sys.argv[1]), safe=""))' "$name")"
    done
    printf -- '--b\nContent-Disposition: attachment; filename="%s.pdf"\n\nlong\n--b--\n' "$(printf 'x%.0s' $(seq 500))"
} >"$work/mail.eml"

before=$(find "$work" -path "$work/folder" -prune -o -print | sort)
"$save" "$work/folder" "$work/mail.eml" >"$work/out" || complain "status $?"
rm "$work/out"
[ "$before" = "$(find "$work" -path "$work/folder" -prune -o -print | sort)" ] || complain "something lies outside of the folder"
for i in "${!wanted[@]}"; do
    file="$work/folder/$((i + 1))-${wanted[i]}"
    [ "$(cat "$file" 2>&1)" = "the body" ] || complain "\"${names[i]}\" was not saved as $file"
done
[ "$(find "$work/folder" -type f | wc -l)" -eq $((${#names[@]} + 1)) ] || complain "not one file an attachment: $(ls "$work/folder")"
find "$work/folder" -name '*-x*.pdf' | grep -q . || complain "a long name lost its ending"

ln -s "$work/mail.eml" "$work/link" && mv "$work/link" "$work/folder/1-outside"
cp "$work/mail.eml" "$work/copy"
"$save" "$work/folder" "$work/mail.eml" >/dev/null 2>&1
[ $? -eq 2 ] || complain "a file that is there is no error"
cmp -s "$work/mail.eml" "$work/copy" || complain "a link led to a file that was overwritten"
exit $failed
