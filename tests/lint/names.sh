#!/bin/sh
# usage: names.sh SOURCE_DIR
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"

echo 'int one;' | file base/one.cpp
passes file_sizes leftovers
printf 'lint: file_sizes\nlint: leftovers\n' | diff "$said" -

fails cited_tests 'no tests found'
fails layer 'no check is named layer'
grep -q 'formatting layers ' "$said" || { cat "$said"; exit 1; }
passes --help
grep -q '^  layers ' "$said"
