#!/bin/sh
# To be sourced by scripts/lint. A comment or document that names a test, as in
# (SaveFile.EndsWithOneZeroByte), or several, as in MiscWidening.* or IspStart.SavedStyle..., names
# tests that exist. So do the words for ctest -R in the tables of documents.

# The names of all cases and of the tests that CMake adds.
test_names()
{
    # A macro's arguments may stand on several lines.
    sources 'tests/*.cpp' | xargs -r -d '\n' cat |
        tr '\n' ' ' | grep -oE '\bTEST(_F|_P)?\( *[A-Za-z0-9_]+, *[A-Za-z0-9_]+ *\)' |
        sed -E 's/TEST(_F|_P)?\( *([A-Za-z0-9_]+), *([A-Za-z0-9_]+) *\)/\2.\3/'
    # Tests that are scripts: install_test(NAME ...) adds Install.NAME.
    sources 'tests/*CMakeLists.txt' | xargs -r -d '\n' sed -nE \
        -e 's/.*add_test\(NAME ([A-Za-z0-9_]+\.[A-Za-z0-9_]+).*/\1/p' \
        -e 's/^ *([a-z]+)_test\(([A-Z][A-Za-z0-9_]*) .*/\u\1.\2/p'
}

# "FILE:LINE CITED" for what looks like a test's name: two capitalised words around a dot.
citations()
{
    sources '*.c' '*.cpp' '*.h' '*.def' '*.md' | while read -r file; do
        awk -v file="$file" '
            function cite(text) {
                while (match(text, /[A-Z][A-Za-z0-9]*\.(\*|[A-Z][A-Za-z0-9_]*(\.\.\.|\*)?)/)) {
                    name = substr(text, RSTART, RLENGTH)
                    before = RSTART == 1 ? "" : substr(text, RSTART - 1, 1)
                    text = substr(text, RSTART + RLENGTH)
                    suite = name
                    sub(/\..*/, "", suite)
                    test = substr(name, length(suite) + 2)
                    # Names in capitals, as MODULE.MEMBER, stand for something else.
                    if (before !~ /[A-Za-z0-9_.\/]/ && suite ~ /[a-z]/ && (test == "*" || test ~ /[a-z]/))
                        print file ":" FNR, name
                }
            }
            file ~ /\.md$/ { cite($0); next }
            inside { cite($0); if ($0 ~ /\*\//) inside = 0; next }
            match($0, /\/\//) { cite(substr($0, RSTART)); next }
            match($0, /\/\*/) { cite(substr($0, RSTART)); inside = $0 !~ /\*\// }' "$file"
    done
}

# "FILE:LINE WORD" for the words of tables' last cells "tests `WORD`, `WORD`", which ctest -R takes.
filters()
{
    # shellcheck disable=SC2016
    sources '*.md' | xargs -r -d '\n' awk '
        match($0, /\| tests? `[A-Za-z0-9_]+`(, `[A-Za-z0-9_]+`)* \|$/) {
            count = split(substr($0, RSTART, RLENGTH), part, "`")
            for (i = 2; i < count; i += 2)
                print FILENAME ":" FNR, part[i]
        }'
}

cited_tests()
{
    names=$(test_names | sort -u)
    [ -n "$names" ] || { echo 'no tests found'; return 1; }
    unknown=$(citations | awk -v names="$names" '
        BEGIN { count = split(names, name, "\n"); for (i in name) known[name[i]] = 1 }
        {
            start = $2
            if (!sub(/(\.\.\.|\*)$/, "", start)) {
                if (!(start in known))
                    print $1 ": no test is named " $2
                next
            }
            for (test in known)
                if (index(test, start) == 1)
                    next
            print $1 ": no test begins with " start
        }')
    [ -z "$unknown" ] || { printf '%s\n' "$unknown"; return 1; }
    filters | {
        idle=0
        while read -r place word; do
            printf '%s\n' "$names" | grep -q -e "$word" || {
                echo "$place: no test has $word in its name"
                idle=1
            }
        done
        return "$idle"
    }
}
