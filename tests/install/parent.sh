#!/bin/sh
# usage: parent.sh CMAKE SOURCE_DIR C_COMPILER CXX_COMPILER
# Builds and runs a host in a project that adds this one as a folder, and looks at what else that
# did to the project.
set -eu
cmake=$1
source=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset DESTDIR

failed()
{
    echo "$1"
    exit 1
}

"$cmake" -S "$source/tests/install/parent" -B "$folder/build" -G Ninja -DCAMPARAM="$source" \
    -DCMAKE_C_COMPILER="$3" -DCMAKE_CXX_COMPILER="$4" -DCMAKE_INSTALL_PREFIX="$folder/prefix" \
    -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON >"$folder/log" 2>&1 ||
    failed "$(cat "$folder/log")"
"$cmake" --build "$folder/build" --parallel 2 >"$folder/log" 2>&1 || failed "$(cat "$folder/log")"

"$folder/build/consumer" 2>"$folder/log" | grep -x 'rows 0, zoom 100' || failed "$(cat "$folder/log")"

grep -qx 'CMAKE_BUILD_TYPE:STRING=' "$folder/build/CMakeCache.txt" || failed 'sets the build type'
[ ! -e "$folder/build/lib" ] || failed 'sets the output folder of libraries'
[ ! -e "$folder/build/bin" ] || failed 'sets the output folder of programs'
ctest=$(dirname "$cmake")/ctest
"$ctest" --test-dir "$folder/build" -N | grep -x 'Total Tests: 0' || failed 'adds tests'
"$cmake" --install "$folder/build" >"$folder/log"
[ ! -e "$folder/prefix" ] || failed 'installs files'
