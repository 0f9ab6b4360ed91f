#!/bin/sh
# network [REQUESTS]
#   Prints how many bytes of reply each kind of request fetches. Floods camparamd for ten seconds with
#   each kind of datagram: 99 % of an honest client's answers must come within 20 ms. Then sends so many
#   mixed requests (1000000), after which it must have the memory, threads and files that it had. The
#   floods come once more without the guard, to tell how many answers are then missing.
set -eu
cd "$(dirname "$0")/../.."
export CAMPARAM_PROOF_REQUESTS="${1-1000000}" CAMPARAM_PROOF_FLOOD_SECONDS=10 \
    CAMPARAM_PROOF_P99_MS=20
scripts/setup
cmake --preset release >/dev/null
cmake --build --preset release --target load_test
log=$(mktemp)
trap 'rm -f "$log"' EXIT

run_tests()
{
    # Not in a pipe, which would have the exit status of grep.
    passed=true
    ctest --test-dir build -R "^$1\." -V --no-tests=error --timeout 3600 >"$log" || passed=false
    grep -E 'amplification,|datagrams;|requests;|Passed|Failed|Failure|tests passed|tests failed' "$log" || true
    "$passed"
}

run_tests Amplification
run_tests HostInAFlood
run_tests HostUnderLoad
echo 'without the guard:'
CAMPARAM_PROOF_NO_GUARD=1
export CAMPARAM_PROOF_NO_GUARD
run_tests HostInAFlood
