#!/bin/sh
# threads [SECONDS]
#   Lets setters, readers, clients, saves, reloads and an observer run at once for so long (60) under
#   the thread sanitizer, and host threads beside the commands of camparamd.
set -eu
cd "$(dirname "$0")/../.."
export CAMPARAM_PROOF_SECONDS="${1-60}" TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1
scripts/setup
cmake --preset tsan >/dev/null
cmake --build --preset tsan --target load_test host_test
setarch "$(uname -m)" -R ctest --test-dir build/tsan -R 'AllAtOnce|HostThreads' --no-tests=error \
    --output-on-failure --timeout $((CAMPARAM_PROOF_SECONDS * 10 + 60))
