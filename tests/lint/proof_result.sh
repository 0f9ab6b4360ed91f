#!/bin/sh
# usage: proof_result.sh SOURCE_DIR
# A proof whose tests fail fails, and shows what failed.
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"

mkdir build/tools
PATH=$folder/build/tools:$PATH
printf '#!/bin/sh\n' | tee build/tools/cmake >scripts/setup
chmod +x build/tools/cmake scripts/setup

# tests_end STATUS: ctest says this much, and ends so.
tests_end()
{
    printf '#!/bin/sh\necho "flood_test.cpp:1: Failure"\nexit %s\n' "$1" >build/tools/ctest
    chmod +x build/tools/ctest
}

tests_end 0
scripts/proof network 8 >"$said" || { echo 'expected to pass'; cat "$said"; exit 1; }
tests_end 8
if scripts/proof network 8 >"$said"; then
    echo 'expected to fail'
    exit 1
fi
grep -F 'flood_test.cpp:1: Failure' "$said" || { cat "$said"; exit 1; }
