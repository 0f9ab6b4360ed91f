#!/bin/sh
# usage: failing_input.sh REPLAY
# The replay names the input whose property does not hold, and fails.
set -u
folder=$(mktemp -d) || exit 1
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/inputs"

printf 'good' >"$folder/inputs/a"
"$1" "$folder/inputs" 2>/dev/null || { echo 'a good input fails'; exit 1; }
printf 'x' >"$folder/inputs/b"
! "$1" "$folder/inputs" 2>"$folder/log" || { echo 'a bad input passes'; exit 1; }
grep -q "$folder/inputs/b" "$folder/log" || { echo 'the input is not named'; exit 1; }
grep -q 'does not hold: an input begins with x' "$folder/log" || { echo 'nor why'; exit 1; }
