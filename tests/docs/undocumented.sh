#!/bin/sh
# usage: undocumented.sh DOXYGEN SOURCES INCLUDE_DIR COMPILER
# A function without a comment, a field without one, and a parameter that does not exist are named.
set -eu
check=$(cd "$(dirname "$0")" && pwd)/reference.sh
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# names HEADER SED_SCRIPT TEXT: with the header changed the check fails and says this.
names()
{
    rm -rf "$folder/include"
    cp -r "$include" "$folder/include"
    sed "$2" "$include/camparam/$1" >"$folder/include/camparam/$1"
    if sh "$check" "$doxygen" "$sources" "$folder/include" "$compiler" >"$folder/said" 2>&1; then
        echo "$1: expected to fail with $2"
        exit 1
    fi
    grep -e "$3" "$folder/said" || { echo "expected: $3"; cat "$folder/said"; exit 1; }
}

doxygen=$1
sources=$2
include=$3
compiler=$4
names af.h '/^\/\*\* Time (CLOCK_MONOTONIC)/d' 'af_item_start_time.* is not documented'
names share.h 's|/\*\*< entries that follow \*/||' 'entry_count.* is not documented'
names commands.h 's/@param\[out\] reason /@param[out] why /' "argument 'why'"
