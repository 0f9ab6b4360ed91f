#!/bin/sh
# usage: honest_tests.sh SOURCE_DIR
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"

# Written in parts, as the check looks at this file, too.
part=ep
skip=GTEST_SK${part:+IP}
nap=sle$part
naps=u$nap
echo 'int main(void) { return 0; }' | file tests/a/one.c
echo "$nap 0.02" | file tests/a/one.sh
passes honest_tests

# plant NAME CODE
plant()
{
    cp "tests/a/one.${1##*.}" build/before 2>/dev/null || : >build/before
    echo "$2" | file "$1"
    fails honest_tests "$1:1:"
    rm "$1"
    cp build/before "tests/a/one.${1##*.}"
}
plant tests/a/one.cpp "TEST(A, B) { $skip(); }"
plant tests/a/one.cpp "TEST(A, DIS""ABLED_B) {}"
plant tests/a/one.cpp "void wait() { $naps(20000); }"
plant tests/a/one.h "inline void wait() { $naps(20000); }"
plant tests/a/one.c "int main(void) { $nap(1); }"
plant tests/a/one.sh "$nap 1"
plant tests/a/one.sh 'ex''it 77'
plant tests/a/CMakeLists.txt 'set_tests_properties(a PROPERTIES WILL''_FAIL ON)'
