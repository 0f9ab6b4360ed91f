#!/bin/sh
# usage: vendor_host.sh CMAKE BUILD_DIR LIB_DIR PAGE SAMPLE_HOME CLIENT
# Takes the host and the command to build it from the page, builds it against an installed tree and runs it: it answers
# the client, tells of changes, saves when told to, and ends with its settings saved.
set -eu
cmake=$1
page=$4
sample=$5
client=$6
network=$(cd "$(dirname "$0")/../support" && pwd)/network.sh
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset DESTDIR

awk '/^```c$/ { inside = 1; next } /^```$/ && inside { exit } inside' "$page" >"$folder/host.c"
lines=$(wc -l <"$folder/host.c")
{ [ "$lines" -gt 20 ] && [ "$lines" -le 60 ]; } || { echo "the host has $lines lines"; exit 1; }
compile=$(grep -m 1 '^    cc .*host\.c' "$page")

"$cmake" --install "$2" --prefix "$folder/prefix" >"$folder/log"
PKG_CONFIG_PATH=$folder/prefix/$3/pkgconfig
LD_LIBRARY_PATH=$folder/prefix/$3
export PKG_CONFIG_PATH LD_LIBRARY_PATH
cd "$folder"
sh -ec "$(echo "$compile" | sed 's/cc /cc -Wall -Wextra -Wpedantic -Werror /')"
mkdir data

cat >run.sh <<'SCRIPT'
set -eu
PATH=$PATH:/usr/sbin:/sbin
ip link set lo up 2>/dev/null || true

# shows LINE...: the client prints them.
shows()
{
    printed=$("$client" --timeout 20 $command 2>&1) || { echo "camparam $command: $printed"; exit 1; }
    [ "$printed" = "$(printf '%s\n' "$@")" ] || { echo "camparam $command prints: $printed"; exit 1; }
}

# wait_for COMMAND...: for 20 seconds at most.
wait_for()
{
    turns=1000
    until "$@"; do
        turns=$((turns - 1))
        [ "$turns" -gt 0 ] || { echo "in vain: $*"; cat log; exit 1; }
        sleep 0.02
    done
}

start()
{
    ./host "$sample" data >log 2>&1 &
    process=$!
    "$client" wait --for 30 >/dev/null
}

end()
{
    kill -TERM "$process"
    wait "$process" || { echo "the host ends with $?"; cat log; exit 1; }
}

start
command='get fan af.zoom_value' shows fan.level=1 af.zoom_value=0
command='set fan.level=2' shows fan.level=2
command='set af.zoom_value=1200' shows af.zoom_value=1200
grep -qx 'zoom to 1200' log || { echo 'the host does not move the lens'; cat log; exit 1; }
kill -USR1 "$process"
wait_for grep -qs '"zoom_value":.*1200' data/af_cur.json
command='set video1.bitRate=4096' shows video1.bitRate=4096
end
grep -q '"bitRate":.*4096' data/video_cur.json || { echo 'not saved at the end'; exit 1; }
cmp data/af_cur.json data/af_cur.json.bak
start
command='get af.zoom_value video1.bitRate' shows af.zoom_value=1200 video1.bitRate=4096
end
SCRIPT
export sample client
sh "$network" sh run.sh
