#!/bin/sh
# usage: packet_filter.sh CAMPARAMD CAMPARAM SAMPLE_HOME SECURITY_PAGE
# In a network of its own with a neighbour. Without anything all clients are answered; with --allow,
# and with the rule that the page on security gives, those of the allowed network and of the machine
# itself, and no others.
set -eu
if [ "${1-}" != inside ]; then
    exec unshare --map-root-user --net --mount --pid --fork --kill-child -- sh "$0" inside "$@"
fi
host=$2
client=$3
home=$4
page=$5
PATH=$PATH:/usr/sbin:/sbin
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mount -t proc proc /proc
mount -t tmpfs tmpfs /dev/shm

# wait_for COMMAND...
wait_for()
{
    tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ "$tries" -lt 400 ] || {
            echo "in vain: $*"
            exit 1
        }
        sleep 0.05
    done
}

has_own_network()
{
    [ "$(readlink "/proc/$1/ns/net")" != "$(readlink /proc/self/ns/net)" ]
}

unshare --net tail -f /dev/null &
neighbour=$!
wait_for has_own_network "$neighbour"
there()
{
    nsenter --net="/proc/$neighbour/ns/net" "$@"
}

ip link add eth0 type veth peer name eth0 netns "$neighbour"
ip link set lo up
ip link set eth0 up
ip address add 192.168.10.1/24 dev eth0
ip address add 10.9.9.1/24 dev eth0
there ip link set eth0 up
there ip address add 192.168.10.2/24 dev eth0
there ip address add 10.9.9.2/24 dev eth0

# start_host OPTION...
start_host()
{
    "$host" --home "$home" --data "$folder/data" "$@" 2>"$folder/log" &
    host_process=$!
    wait_for grep -q ready "$folder/log"
}

here()
{
    "$@"
}

# expect answered|silent ADDRESSES here|there WORDS
expect()
{
    tries=1
    [ "$1" = silent ] || tries=40 # a busy machine takes its time
    for address in $2; do
        found=silent
        "$3" "$client" --host "$address" --timeout 0.5 --retries "$tries" get af.zoom_value \
            >"$folder/answer" 2>&1 && found=answered
        [ "$found" = "$1" ] || {
            echo "$4, $address: $found"
            cat "$folder/answer" "$folder/log"
            exit 1
        }
    done
}

start_host --allow 192.168.10.0/24
expect answered 192.168.10.1 there '--allow, the allowed network'
expect silent 10.9.9.1 there '--allow, another network'
wait_for grep -q 'datagrams dropped: .* from other networks (last 10.9.9.2)' "$folder/log"
expect answered '127.0.0.1 10.9.9.1' here '--allow, the machine itself'
kill "$host_process"
wait "$host_process"

start_host
expect answered '192.168.10.1 10.9.9.1' there 'without the rule'
awk '$0 == "```" { inside = 0 } inside; $0 == "```nft" { inside = 1 }' "$page" >"$folder/rule"
grep -q 'table inet camparam' "$folder/rule"
nft -f "$folder/rule"
expect answered 192.168.10.1 there 'the allowed network'
expect silent 10.9.9.1 there 'another network'
expect answered '127.0.0.1 10.9.9.1' here 'the machine itself'
