#!/bin/sh
# usage: empty_corpus.sh REPLAY
# A corpus that is empty or missing proves nothing, so its replay fails.
set -u
folder=$(mktemp -d) || exit 1
trap 'rm -rf "$folder"' EXIT

! "$1" "$folder" || { echo 'an empty folder passes'; exit 1; }
! "$1" "$folder/missing" || { echo 'a missing folder passes'; exit 1; }
! "$1" || { echo 'no folder passes'; exit 1; }
printf '{}' >"$folder/input"
"$1" "$folder" || { echo 'a folder with an input fails'; exit 1; }
