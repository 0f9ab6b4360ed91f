#!/bin/sh
# usage: library_alone.sh CMAKE SOURCE_DIR C_COMPILER CXX_COMPILER
# Builds and installs the libraries with make, out of reach of what the programs and the tests need.
set -eu
cmake=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset DESTDIR

failed()
{
    echo "$1"
    exit 1
}

"$cmake" -S "$2" -B "$folder/build" -G 'Unix Makefiles' -DCAMPARAM_TOOLS=OFF \
    -DCMAKE_C_COMPILER="$3" -DCMAKE_CXX_COMPILER="$4" \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG= \
    -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON >"$folder/log" 2>&1 ||
    failed "$(cat "$folder/log")"
"$cmake" --build "$folder/build" --parallel 2 >"$folder/log" 2>&1 || failed "$(cat "$folder/log")"
"$cmake" --install "$folder/build" --prefix "$folder/prefix" >"$folder/log"

for name in libcamparam.so libcamparam_platform.so libcamparam_commands.so; do
    [ -n "$(find "$folder/prefix" -name "$name")" ] || failed "missing: $name"
done
programs=$(find "$folder/build/bin" "$folder/prefix/bin" -type f 2>/dev/null || true)
[ -z "$programs" ] || failed "more than the libraries: $programs"
