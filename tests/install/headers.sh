#!/bin/sh
# usage: headers.sh INCLUDE_DIR COMPILER OPTION...
# Compiles every public header alone.
set -u
include=$1
shift
failed=0
count=0
for header in "$include"/camparam/*.h; do
    name=camparam/${header##*/}
    # A translation unit needs a declaration, and a header of macros alone has none.
    printf '#include "%s"\ntypedef int included;\n' "$name" |
        "$@" -I "$include" -Wall -Wextra -Wpedantic -Werror -fsyntax-only - || failed=1
    count=$((count + 1))
done
echo "$count headers"
[ "$count" -gt 1 ] && exit "$failed"
