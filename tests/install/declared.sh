#!/bin/sh
# To be sourced. declared INCLUDE_DIR COMPILER store|platform|commands prints the names that the public
# headers declare as exported, sorted: those of platform*.h, of commands.h, or of all other headers.

declared()
{
    for header in "$1"/camparam/*.h; do
        printf '#include "camparam/%s"\n' "${header##*/}"
    done | "$2" -E -x c -I "$1" - | awk -v part="$3" '
        # Line markers tell which file the text behind them comes from.
        /^# [0-9]+ "/ {
            in_headers = $3 ~ /\/camparam\/[a-z_0-9]+\.(h|def)"$/
            owner = "store"
            if ($3 ~ /\/platform[a-z_0-9]*\.h"$/)
                owner = "platform"
            if ($3 ~ /\/commands\.h"$/)
                owner = "commands"
            next
        }
        in_headers && owner == part { text = text " " $0 }
        END {
            gsub(/__attribute__ *\(\(visibility\("default"\)\)\)/, "@", text)
            count = split(text, declarations, "@")
            for (i = 2; i <= count; i++) {
                name = declarations[i]
                sub(/[;(\[].*/, "", name) # behind the name: parameters, a size or the end
                sub(/ +$/, "", name)
                sub(/.*[ *]/, "", name)
                print name
            }
        }' | LC_ALL=C sort -u
}
