#!/bin/sh
# kills [COUNT]
#   Kills a process that saves without end, so many times at random (1000), and at each system call of
#   a save in turn, with the guard and without it.
set -eu
cd "$(dirname "$0")/../.."
export CAMPARAM_PROOF_KILLS="${1-1000}"
scripts/setup
cmake --preset release >/dev/null
cmake --build --preset release --target calls_test
for kind in RandomKill.LosesNothingButTheSaveInFlight RandomKill.WithoutTheGuardLosesNumbers \
    Kill.AtEachCallOfASaveLosesNothing Kill.WithoutTheGuardLosesWhatIsBeingWritten; do
    build/bin/calls_test --gtest_filter="$kind"
done
