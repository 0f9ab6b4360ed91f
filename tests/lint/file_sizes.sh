#!/bin/sh
# usage: file_sizes.sh SOURCE_DIR
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"

yes '' | head -n 300 | file base/one.cpp
yes '' | head -n 600 | file tests/a/one_test.cpp
passes file_sizes
echo >>base/one.cpp
fails file_sizes 'base/one.cpp: more than 300 lines'
rm base/one.cpp
echo >>tests/a/one_test.cpp
fails file_sizes 'tests/a/one_test.cpp: more than 600 lines'
