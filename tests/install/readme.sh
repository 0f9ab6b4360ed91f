#!/bin/sh
# usage: readme.sh CMAKE BUILD_DIR LIB_DIR README SAMPLE_HOME
# Does what the README says about embedding: takes its C file, its CMakeLists.txt and its commands,
# and builds a host against an installed tree. Then runs it, with the sample device for the folders
# that the example names.
set -eu
cmake=$1
readme=$4
sample=$5
network=$(cd "$(dirname "$0")/../support" && pwd)/network.sh
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset DESTDIR CMAKE_GENERATOR

failed()
{
    cat "$folder/log"
    echo "$1"
    exit 1
}

# The first block of a language.
block()
{
    awk -v first="\`\`\`$1" '$0 == "```" && inside { exit } inside; $0 == first { inside = 1 }' "$readme"
}

# The indented command that begins so.
command_line()
{
    grep -m 1 "^    $1" "$readme" || failed "README.md: no command: $1"
}

"$cmake" --install "$2" --prefix "$folder/prefix" >"$folder/log"
CMAKE_PREFIX_PATH=$folder/prefix
PKG_CONFIG_PATH=$folder/prefix/$3/pkgconfig
LD_LIBRARY_PATH=$folder/prefix/$3
export CMAKE_PREFIX_PATH PKG_CONFIG_PATH LD_LIBRARY_PATH

mkdir "$folder/host"
cd "$folder/host"
block c | sed "s|/usr/share/camera|$sample|; s|/var/lib/camera|$folder/data|" >host.c
block cmake >CMakeLists.txt
configure=$(command_line 'cmake -S \. -B build$')
build=$(command_line 'cmake --build build$')
compile=$(command_line 'cc .*host\.c')
sh -ec "$configure" >"$folder/log" 2>&1 || failed "$configure"
sh -ec "$build" >"$folder/log" 2>&1 || failed "$build"
sh -ec "$compile" >"$folder/log" 2>&1 || failed "$compile"

# The host has blocked signals before it sends anything to the lens, so the file tells when to end it.
for host in build/host ./a.out; do
    rm -rf "$folder/data"
    mkdir "$folder/data"
    # shellcheck disable=SC2016 # the inner shell expands it
    sh "$network" sh -c '
        "$1" >"$2/log" 2>&1 &
        turns=500
        until [ -s "$2/data/af_cur.json" ] || [ "$turns" = 0 ]; do
            turns=$((turns - 1))
            sleep 0.02
        done
        kill -TERM $!
        wait $!' sh "$host" "$folder" || failed "$host failed"
    grep -qx 'zoom to 1200' "$folder/log" || failed "$host does not tell its hook"
    grep -q '"zoom_value":.*1200' "$folder/data/af_cur.json" || failed "$host saves no zoom"
done
