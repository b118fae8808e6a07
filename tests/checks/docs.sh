#!/usr/bin/env bash
# Doxygen has nothing to warn of: every public class and operation has a comment, every link leads somewhere.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
./dev docs 2>build/docs.log >/dev/null || { cat build/docs.log >&2; exit 1; }
for page in classVelmara_1_1Rfc822Msg classVelmara_1_1Ref classVelmara_1_1TextHtmlDoc; do
    [ -s "build/docs/html/$page.html" ] || { echo "docs: no page $page" >&2; exit 1; }
done
# Comments of a group of declarations stand with each of them.
grep -q "on the stream that this is a handle on" build/docs/html/classVelmara_1_1MediaIn.html || { echo "docs: no comment at MediaIn" >&2; exit 1; }
