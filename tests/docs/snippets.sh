#!/bin/sh
# usage: snippets.sh INCLUDE_DIR COMPILER PAGE
# The page's parts of a host compile, each alone. What they call stands at the beginning of a line.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

awk -v folder="$folder" '
    /^```c$/ { inside = 1; count++; next }
    /^```$/ { inside = 0 }
    inside && count > 1 { print >(folder "/" count ".part") }' "$3"
count=0
for part in "$folder"/*.part; do
    {
        printf '#include <camparam/camparam.h>\n#include <netinet/in.h>\n'
        printf 'int seconds_since_boot(void);\nvoid offer(void);\n'
        grep -v '^register_' "$part"
        printf 'void offer(void)\n{\n'
        grep '^register_' "$part"
        printf '}\n'
    } >"$folder/part.c"
    "$2" -std=c99 -Wall -Wextra -Wpedantic -Werror -I "$1" -fsyntax-only "$folder/part.c"
    count=$((count + 1))
done
echo "$count parts"
[ "$count" -ge 3 ]
