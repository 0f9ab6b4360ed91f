#!/bin/sh
# usage: network.sh [PROGRAM [ARGUMENT...]]
# Without a program: finds out which network the tests can use. Silent where every test may have a
# network of its own. Where that is forbidden, as in most containers, prints one line that says so,
# and fails if UDP port 6800, which the tests then share, is taken.
# With a program: runs it in a network of its own, or alone on the machine's.
set -eu
# The test programs take it as well; nobody else does.
lock=/tmp/camparam-test-port-6800.lock

own_networks()
{
    [ "${CAMPARAM_TEST_NETWORK-}" != machine ] &&
        unshare --map-root-user --net --mount -- mount -t tmpfs tmpfs /dev/shm 2>/dev/null
}

if own_networks; then
    # Share maps are its own, too.
    [ $# -eq 0 ] || exec unshare --map-root-user --net --mount -- \
        sh -c 'mount -t tmpfs tmpfs /dev/shm && exec "$@"' sh "$@"
    exit 0
fi
[ -e "$lock" ] || : >"$lock"
[ $# -eq 0 ] || exec flock "$lock" "$@"

echo "no network namespaces here: the tests that need UDP port 6800 run one at a time on the machine's own network"
if flock "$lock" grep -qis '^ *[0-9]*: [0-9a-f]*:1A90 ' /proc/net/udp /proc/net/udp6; then
    echo 'UDP port 6800 is taken: end the program that uses it, then start the tests again' >&2
    exit 1
fi
