#!/usr/bin/env bash
# Installs the packages into a Debian 12 that has nothing but what they ask for and a compiler, uses them there,
# removes them, and looks that nothing is left. The clean Debian is kept in build/clean-root for the next time.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
say() { printf 'clean-root: %s\n' "$*" >&2; }
fail() { say "$*"; exit 1; }

if [ "$(id -u)" -ne 0 ]; then
    say "skipped: only root can make a root of its own"
    exit 0
fi
if ! command -v debootstrap >/dev/null; then
    say "skipped: debootstrap is not installed"
    exit 0
fi
packages=(build/package/packages/*.deb)
[ -e "${packages[0]}" ] || fail "there are no packages; ./dev package makes them"

# ---- a clean Debian ---------------------------------------------------------------------------

wanted=$(for package in "${packages[@]}"; do dpkg-deb -f "$package" Depends; done | tr ',' '\n' |
    sed -E 's/^ *([a-z0-9.+-]+).*/\1/' | grep -vE 'velmara|^$' | sort -u | tr '\n' ' ')
wanted+="g++ pkg-config"
root=build/clean-root
if [ "$(cat "$root/.made-of" 2>/dev/null)" != "$wanted" ]; then
    say "making a clean Debian 12 with $wanted"
    rm -rf "$root"
    mkdir -p "$root" build/clean-root-debs
    if ! debootstrap --variant=minbase --cache-dir="$PWD/build/clean-root-debs" --include="${wanted// /,}" bookworm \
        "$root" http://deb.debian.org/debian >build/clean-root.log 2>&1; then
        tail -5 build/clean-root.log >&2
        rm -rf "$root"
        say "skipped: debootstrap did not succeed here"
        exit 0
    fi
    printf '%s' "$wanted" >"$root/.made-of"
fi
inside() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C "$@"; }

# What there is, but for notes that dpkg and the linker keep.
listed() {
    (cd "$root" && find . -xdev -path ./proc -prune -o -path ./sys -prune -o -path ./tmp -prune -o -path ./var/lib/dpkg \
        -prune -o -path ./var/log -prune -o -path ./var/cache -prune -o -path ./etc/ld.so.cache -prune -o -print | sort)
}

names=()
for package in "${packages[@]}"; do names+=("$(dpkg-deb -f "$package" Package)"); done
inside dpkg --purge "${names[@]}" >/dev/null 2>&1 || true # of a test that was broken off

# ---- install and use --------------------------------------------------------------------------

listed >build/clean-root.before
rm -rf "$root"/tmp/*
cp "${packages[@]}" samples/*.eml examples/scanner.cpp "$root/tmp/"
inside sh -c 'dpkg -i /tmp/*.deb' >build/clean-root.log 2>&1 || { cat build/clean-root.log >&2; fail "dpkg could not install them"; }

[ "$(inside velmara --version)" = "$(build/package/bin/velmara --version)" ] || fail "the command has another version"
inside velmara tree /tmp/newsletter.eml >build/clean-root.tree
build/release/bin/velmara tree samples/newsletter.eml | diff - build/clean-root.tree || fail "the command gives another tree"
inside velmara inspect /tmp/newsletter.eml | grep -qE "image/png +the same" || fail "the type database is not found"
inside velmara tokens /tmp/russian.eml | grep -qE ': [0-9]+ [0-9]+' || fail "the word lists are not found"

inside sh -c 'cd /tmp && g++ -std=c++17 -Wall -Wextra -Werror scanner.cpp -o scanner $(pkg-config --cflags --libs velmara)' ||
    fail "the example does not build against libvelmara-dev"
mkdir -p "$root/tmp/samples"
mv "$root"/tmp/*.eml "$root/tmp/samples/"
inside sh -c 'cd /tmp && ./scanner samples/*.eml' | diff - examples/scanner.expected || fail "the example prints something else"

# ---- remove -----------------------------------------------------------------------------------

inside dpkg --purge "${names[@]}" >build/clean-root.log 2>&1 || { cat build/clean-root.log >&2; fail "dpkg could not remove them"; }
rm -rf "$root"/tmp/*
listed | diff build/clean-root.before - || fail "this is what they leave behind, or take away (<)"
say "installed, used and removed: ${names[*]}"
