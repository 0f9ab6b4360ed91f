#!/bin/sh
# fuzz [SECONDS [TARGET...]]
#   Runs each fuzz target for so long (600), from the committed corpus and what earlier runs found
#   (build/fuzz/found). An input that fails is kept in build/fuzz/failed; the last lines tell inputs,
#   coverage and failures.
# fuzz renew [TARGET...]
#   Makes the committed corpus anew: the fewest inputs that cover what is known, and those named
#   failed-..., which once failed.
set -eu
cd "$(dirname "$0")/../.."
work=build/fuzz
seeds=$work/seeds
failed=$work/failed

# targets [TARGET...]: these, or all.
targets()
{
    if [ $# -gt 0 ]; then
        echo "$@"
    else
        sed -n 's/^set(CAMPARAM_FUZZ_TARGETS \(.*\))$/\1/p' fuzz/CMakeLists.txt
    fi
}

build()
{
    scripts/setup
    cmake --preset fuzz >/dev/null
    cmake --build --preset fuzz
    mkdir -p "$seeds" "$failed"
    fuzz/seeds.sh "$seeds"
}

# Folders of inputs, the first of which takes new ones; the committed corpus may not be there yet.
inputs_of()
{
    for folder in "$work/found/$1" "fuzz/corpus/$1" "$seeds/$1"; do
        [ ! -d "$folder" ] || printf '%s\n' "$folder"
    done
}

# Those that fork for each input are too slow to try short inputs first.
lengths_of()
{
    case $1 in
        start) echo -len_control=0 -max_len=4096 ;;
        sequence) echo -len_control=0 -max_len=512 ;;
    esac
}

# Names of folders hold no blanks.
# shellcheck disable=SC2046
run_target()
{
    mkdir -p "$work/found/$1"
    "$work/bin/fuzz_$1" -max_total_time="$2" -dict="$seeds/words" -timeout=30 \
        -artifact_prefix="$failed/$1-" -print_final_stats=1 $(lengths_of "$1") $(inputs_of "$1") >"$work/$1.log" 2>&1
}

report()
{
    awk -v target="$1" '
        / cov: / { for (i = 1; i < NF; i++) { if ($i == "cov:") edges = $(i + 1) } }
        /number_of_executed_units/ { runs = $2 }
        /average_exec_per_sec/ { rate = $2 }
        END { printf "%-10s %9d inputs, %6d a second, %5d edges\n", target, runs, rate, edges }
    ' "$work/$1.log"
}

fuzz()
{
    seconds=$1
    shift
    result=0
    for target in $(targets "$@"); do
        if ! run_target "$target" "$seconds"; then
            result=1
            echo "$target failed: $work/$target.log, inputs in $failed"
        fi
        report "$target"
    done
    return "$result"
}

# shellcheck disable=SC2046
renew()
{
    for target in $(targets "$@"); do
        rm -rf "$work/merged"
        mkdir -p "$work/merged"
        "$work/bin/fuzz_$target" -merge=1 -use_counters=0 -timeout=30 "$work/merged" \
            $(inputs_of "$target") >"$work/$target.log" 2>&1
        mkdir -p "fuzz/corpus/$target"
        find "fuzz/corpus/$target" -name 'failed-*' -exec cp {} "$work/merged" \;
        rm -rf "fuzz/corpus/$target"
        mv "$work/merged" "fuzz/corpus/$target"
        echo "$target: $(find "fuzz/corpus/$target" -type f | wc -l) inputs," \
            "$(du -sk --apparent-size "fuzz/corpus/$target" | cut -f1) KiB"
    done
}

# The targets leave their folders when libFuzzer ends them.
TMPDIR=$(mktemp -d /dev/shm/camparam-proof-XXXXXX 2>/dev/null || mktemp -d)
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

build
case ${1-600} in
    renew)
        shift
        renew "$@"
        ;;
    *[!0-9]* | '')
        echo "not a number of seconds: $1" >&2
        exit 2
        ;;
    *)
        seconds=${1-600}
        [ $# -eq 0 ] || shift
        fuzz "$seconds" "$@"
        ;;
esac
