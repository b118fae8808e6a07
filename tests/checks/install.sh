#!/usr/bin/env bash
# An install into a fresh prefix serves a small program, built once by pkg-config and once by CMake.
set -euo pipefail
prefix=$PWD/build/install
rm -rf build/install build/consumer
cmake --install build/release --prefix "$prefix" >/dev/null
mkdir -p build/consumer

export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name velmara.pc)")
# shellcheck disable=SC2046
g++ -std=c++17 -Wall -Wextra -Werror tests/consumer/consumer.cpp -o build/consumer/by-pkg-config \
    $(pkg-config --define-variable=prefix="$prefix" --cflags --libs velmara)
cmake -S tests/consumer -B build/consumer/cmake -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build build/consumer/cmake >/dev/null

for program in build/consumer/by-pkg-config build/consumer/cmake/consumer; do
    printed=$(LD_LIBRARY_PATH="$(dirname "$PKG_CONFIG_PATH")" "$program")
    [ "$printed" = "Hello: 5 bytes" ] || { echo "$program printed: $printed" >&2; exit 1; }
done

# What tells people of the programs comes along.
for program in velmara velmara-dict; do
    for file in "share/man/man1/$program.1" "share/bash-completion/completions/$program" "bin/$program"; do
        [ -s "$prefix/$file" ] || { echo "$file was not installed" >&2; exit 1; }
    done
done

# Each public header can be included alone.
for header in "$prefix"/include/velmara/*.h; do
    echo "#include <velmara/$(basename "$header")>" | g++ -std=c++17 -Wall -Wextra -Werror -I"$prefix/include" \
        -fsyntax-only -x c++ - || { echo "$header does not stand alone" >&2; exit 1; }
done
