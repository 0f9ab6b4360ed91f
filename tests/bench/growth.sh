#!/bin/sh
# usage: growth.sh INSTRUCTIONS
# The program that counts instructions ends with 1, and names the kind of request, when a count is
# over 3 % above the recorded one; with 2 when it cannot tell.
set -eu
instructions=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
said=$folder/said
unset CAMPARAM_BENCH_TABLE

# ends STATUS ARGUMENT...: the program ends so with these arguments.
ends()
{
    expected=$1
    shift
    status=0
    "$instructions" "$@" >"$said" 2>&1 || status=$?
    [ "$status" = "$expected" ] || { echo "ended with $status, not $expected: $*"; cat "$said"; exit 1; }
}

# grown_by PERCENT: records "fifteen members" as so much less than it takes.
grown_by()
{
    awk -v percent="$1" '/fifteen/ { $1 = int($1 / (1 + percent / 100)) } { print }' \
        "$folder/recorded" >"$folder/less"
}

ends 0 --record "$folder/recorded"
[ "$(grep -c '^[1-9][0-9]* [a-z]' "$folder/recorded")" = 4 ] || { cat "$folder/recorded"; exit 1; }
ends 0 --compare "$folder/recorded"

grown_by 2
ends 0 --compare "$folder/less"
grown_by 4
ends 1 --compare "$folder/less"
grep '^fifteen members: [0-9]* instructions, [0-9]* recorded$' "$said"
if grep '^one member: ' "$said"; then
    exit 1
fi

sed 1d "$folder/recorded" >"$folder/part"
ends 2 --compare "$folder/part"
ends 2 --compare
ends 2 --compair "$folder/recorded"
