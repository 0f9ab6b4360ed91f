#!/bin/sh
# usage: cited_tests.sh SOURCE_DIR
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"

file tests/a/one_test.cpp <<'TEXT'
TEST(SaveFile, EndsWithAZero) {}
TEST_F(SaveFile,
       KeepsItsMode)
{
}
TEST_P(EachDevice, Starts) {}
TEXT
echo 'install_test(HeadersCompile headers.sh)' | file tests/install/CMakeLists.txt
file base/one.cpp <<'TEXT'
// Ends so on purpose (SaveFile.EndsWithAZero), as SaveFile.* and SaveFile.Keeps... tests; EachDevice.Starts
int first; /* Install.HeadersCompile,
              SaveFile.KeepsItsMode */
int second = Object.Member; // MODULE.MEMBER, "File.h"
TEXT
echo 'See EachDevice.* and README.md.' | file docs/one.md
passes cited_tests

# plant FILE TEXT CITED
plant()
{
    cp "$1" build/before 2>/dev/null || rm -f build/before
    echo "$2" >>"$1"
    fails cited_tests "$3"
    if [ -e build/before ]; then cp build/before "$1"; else rm "$1"; fi
}
plant base/one.cpp 'int third; // (SaveFile.EndsWithAnOne)' 'base/one.cpp:5: no test is named SaveFile.EndsWithAnOne'
plant base/one.h '/* LoadFile.* */' 'base/one.h:1: no test begins with LoadFile.'
plant include/camparam/one.def '/* first
 * SaveFile.Loses... tests */' 'one.def:2: no test begins with SaveFile.Loses'
plant docs/one.md 'As SaveFile.EndsWith' 'docs/one.md:2: no test is named SaveFile.EndsWith'
plant tests/a/one_test.cpp '// Install.HeadersRun' 'no test is named Install.HeadersRun'
passes cited_tests
