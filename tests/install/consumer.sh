#!/bin/sh
# usage: consumer.sh CMAKE BUILD_DIR LIB_DIR C_COMPILER
# Installs to a prefix, moves it, and builds and runs a host with what is found there: one by
# find_package, one by pkg-config. Then runs the installed programs.
set -eu
cmake=$1
build=$2
lib=$3
compiler=$4
consumer=$(cd "$(dirname "$0")/consumer" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset DESTDIR

"$cmake" --install "$build" --prefix "$folder/first" >"$folder/log"
mv "$folder/first" "$folder/prefix"

failed()
{
    cat "$1"
    exit 1
}

expect_start()
{
    "$@" >"$folder/out" 2>&1 || failed "$folder/out"
    grep -q 'cJson version:1 7 14$' "$folder/out" || failed "$folder/out"
    grep -qx 'rows 0, zoom 100' "$folder/out" || failed "$folder/out"
}

"$cmake" -S "$consumer" -B "$folder/by_cmake" -G Ninja -DCMAKE_C_COMPILER="$compiler" \
    -DCMAKE_PREFIX_PATH="$folder/prefix" >>"$folder/log"
"$cmake" --build "$folder/by_cmake" >>"$folder/log" || failed "$folder/log"
expect_start "$folder/by_cmake/consumer"

PKG_CONFIG_PATH=$folder/prefix/$lib/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # a list of words
"$compiler" -std=c99 -Wall -Wextra -Werror "$consumer/consumer.c" -o "$folder/by_pkg_config" \
    $(pkg-config --cflags --libs camparam-platform)
expect_start env LD_LIBRARY_PATH="$folder/prefix/$lib" "$folder/by_pkg_config"

version=$(pkg-config --modversion camparam)
"$folder/prefix/bin/camparamd" --version | grep -F "$version"
"$folder/prefix/bin/camparam" --version | grep -F "$version"
