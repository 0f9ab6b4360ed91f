#!/bin/sh
# usage: transcript.sh HOST CLIENT SAMPLE_HOME PAGE PORT
# Runs the commands of a page's console blocks against a host on the sample device, one after the other, and compares
# what they print, errors too, with what the page shows. To be run in a network of its own.
set -eu
host=$1
client=$2
home=$3
page=$4
CAMPARAM_HOST=127.0.0.1:$5 # the share maps of a port that no other test has
export CAMPARAM_HOST
folder=$(mktemp -d)
PATH=$PATH:/usr/sbin:/sbin
ip link set lo up 2>/dev/null || true # on the machine's own network it is
"$host" --home "$home" --data "$folder/data" --port "$5" 2>"$folder/log" &
process=$!
trap 'kill "$process"; wait "$process" || true; rm -rf "$folder"' EXIT
"$client" wait --for 30 >/dev/null

awk '/^```console$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$page" >"$folder/shown"
sed -n 's/^\$ //p' "$folder/shown" >"$folder/commands"
while read -r command; do
    printf '$ %s\n' "$command"
    # A busy machine may need longer than the usual second.
    sh -c "$(printf '%s' "$command" | sed "s|^build/bin/camparam|'$client' --timeout 20|")" 2>&1 </dev/null || true
done <"$folder/commands" >"$folder/printed"
echo "$(wc -l <"$folder/commands") commands; < shown, > printed:"
[ -s "$folder/commands" ]
diff "$folder/shown" "$folder/printed"
