#!/bin/sh
# usage: protocol.sh PROGRAM HOST CLIENT DEVICE PAGE PORT
# Lets PROGRAM compare the page's requests and answers with two hosts on the files in DEVICE, on PORT and on the one behind
# it. What the second one holds cannot be saved. To be run in a network of its own.
set -eu
program=$1
host=$2
client=$3
device=$4
page=$5
usual=$6
unsavable=$(($6 + 1))
folder=$(mktemp -d)
PATH=$PATH:/usr/sbin:/sbin
ip link set lo up 2>/dev/null || true # on the machine's own network it is

cp -r "$device" "$folder/home"
# Descriptions need more than a page.
for line in $(seq 60); do
    echo "line$line = \"nothing\""
done >>"$folder/home/overlay.conf"
"$host" --home "$folder/home" --data "$folder/data" --port "$usual" --no-share 2>"$folder/log" &
first=$!
"$host" --home "$folder/home" --data "$folder/full" --port "$unsavable" --no-share --no-write-conf \
    --no-guard 2>"$folder/log2" &
second=$!
trap 'kill "$first" "$second"; wait || true; rm -rf "$folder"' EXIT
"$client" --port "$usual" wait --for 30 >/dev/null
"$client" --port "$unsavable" wait --for 30 >/dev/null
ln -s /dev/full "$folder/full/af_cur.json"
"$program" "$page" "$usual" "$unsavable"
