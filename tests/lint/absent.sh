#!/bin/sh
# usage: absent.sh SOURCE_DIR
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"

echo 'int done;' | file base/one.cpp
passes leftovers
# The word would otherwise stand in this file, where the check looks as well.
echo "int done; // $(echo ODOT | rev)" | file base/one.cpp
fails leftovers 'base/one.cpp:1:'
echo 'int done; ' | file base/one.cpp
fails leftovers 'base/one.cpp:1:'

echo 'int done;' | file base/one.cpp
sed -i "s/'\[\[:blank:\]\]\$'/'(['/" scripts/lint
fails leftovers 'grep failed'
cp "$1/scripts/lint" scripts/lint
passes leftovers
rm base/one.cpp
ln -s nowhere/else base/two.cpp
ln -s /proc/self/mem base/one.cpp
fails leftovers 'grep failed'
rm base/one.cpp

echo 'int main;' | file tests/one.cpp
fails cxx_library 'no file to look at'
