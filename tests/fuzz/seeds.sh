#!/bin/sh
# usage: seeds.sh SEEDS_SCRIPT FOLDER
# Each target has seeds, with the requests of the protocol page among them. The folder stays, for the
# replays.
set -u
folder=$2

rm -rf "$folder"
mkdir -p "$folder"
"$1" "$folder" || exit 1
for target in datagram share web files start configure reply sequence; do
    [ -n "$(find "$folder/$target" -type f -size +0)" ] || { echo "no seeds: $target"; exit 1; }
done
[ "$(head -c 2 "$folder/datagram/request-1" | tail -c 1)" = '{' ] || { echo 'no request'; exit 1; }
grep -q '"zoom_value"' "$folder/words" || { echo 'no words'; exit 1; }
