#!/bin/sh
# To be sourced by scripts/lint. Each folder may include and call what its row names, and no more:
# runtime -> server, share, modules -> base -> include. A row stands for the folders below it too,
# unless they have rows of their own. The folders outside the library see it through
# include/camparam/ alone.
layer_table='
include         include
base            include base
modules/fixed   include base modules/fixed modules/odm
modules/odm     include base modules/odm
modules/text    include base modules/text
server          include base server
share           include base share
runtime         include base modules server share runtime
platform        include platform
commands        include base commands
host            include host
client          include client
cli             include client cli
bench           include bench
fuzz            include base modules server share runtime platform commands host fuzz
examples        include examples
tests           include base modules server share runtime platform host client cli fuzz tests
tests/bench     include bench tests
tests/foreign   include tests/foreign
tests/install   include tests/install
'
# The module table, which only the runtime fills; camparam/module.h declares it for all to read.
read_by_all='module_para_handle module_para_handle_num'

# Reads lines "USER USED WHAT", where both are source files; prints those that the table forbids.
against_the_table()
{
    LC_ALL=C awk -v table="$layer_table" '
        BEGIN {
            count = split(table, rows, "\n")
            for (i = 1; i <= count; i++) {
                words = split(rows[i], word, " ")
                for (j = 1; j <= words; j++)
                    allowed[word[1], j] = word[j]
                if (words > 0)
                    size[word[1]] = words
            }
        }
        # The nearest folder around a file that has a row.
        function folder_of(file) {
            while (sub(/\/[^\/]*$/, "", file))
                if (file in size)
                    return file
            return ""
        }
        function below(file, folder) { return index(file, folder "/") == 1 }
        {
            folder = folder_of($1)
            if (folder == "") {
                print $1 ": its folder has no row in scripts/checks/layers.sh"
                next
            }
            # The first word of a row is its folder, which has its own way.
            for (i = 2; i <= size[folder]; i++)
                if (below($2, allowed[folder, i]))
                    next
            print $1 ": " folder " may not use " $3 " of " $2
        }' | sort -u
}

# "USER USED "INCLUDED"" for each include that names a file of the tree. Each file uses itself, so that
# one in a folder without a row is seen.
includes()
{
    sources '*.c' '*.cpp' '*.h' '*.def' | while read -r file; do
        echo "$file $file itself"
        sed -n 's/^[[:blank:]]*#[[:blank:]]*include[[:blank:]]*["<]\([^">]*\)[">].*/\1/p' "$file" |
            while read -r name; do
                for used in "${file%/*}/$name" "$name" "include/$name" "tests/$name"; do
                    [ -e "$used" ] || continue
                    case $used in *../*) used=$(realpath --relative-to=. "$used") ;; esac
                    echo "$file $used \"$name\""
                    break
                done
            done
    done
}

# "SOURCE SYMBOL TYPE" for the global symbols of every object file of the libraries.
symbols()
{
    (cd build/lint && find . -path '*/camparam.dir/*.o' -o -path '*/camparam_platform.dir/*.o') |
        sed 's|^\./||' | sort | while read -r object; do
        # CMake names an object after its source, behind the folder of its target.
        file=$(echo "$object" | sed 's|CMakeFiles/[^/]*\.dir/||; s|\.o$||')
        # Objects of sources that are gone may be there from an earlier build.
        [ ! -e "$file" ] || nm --extern-only --format=posix "build/lint/$object" |
            awk -v file="$file" 'NF > 1 { print file, $1, $2 }'
    done
}

# "USER USED SYMBOL" for each symbol that one source takes from another. The platform functions are
# no part of it: the store takes them from any host, by camparam/platform.h.
calls()
{
    awk -v read_by_all="$read_by_all" '
        BEGIN { count = split(read_by_all, names, " "); for (i in names) exempt[names[i]] = 1 }
        NR == FNR { if ($3 ~ /^[TDBRGSC]$/ && $1 !~ /^platform\//) definer[$2] = $1; next }
        $3 == "U" && $2 in definer && !($2 in exempt) { print $1, definer[$2], $2 }' "$1" "$1"
}

# "USER USED SYMBOL", as above, from the object files of a build.
called_symbols()
{
    { lint_tree && cmake --build build/lint --target camparam camparam_platform >build/lint/build.log; } ||
        { cat build/lint/*.log; return 1; }
    symbols >build/lint/symbols
    grep -q ' T$' build/lint/symbols || { echo 'no symbols found in build/lint'; return 1; }
    calls build/lint/symbols >build/lint/calls
}

layers()
{
    result=0
    includes | against_the_table | grep . && result=1
    called_symbols || return 1
    against_the_table <build/lint/calls | grep . && result=1
    return "$result"
}
