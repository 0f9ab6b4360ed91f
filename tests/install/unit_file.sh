#!/bin/sh
# usage: unit_file.sh UNIT
# The unit file is one that systemd accepts and rates as well protected: at most 1.5 of 10 points of
# exposure.
set -eu
# That the program is not installed is no fault of the unit.
complaints=$(systemd-analyze verify "$1" 2>&1 | grep -v 'is not executable: No such file' || true)
[ -z "$complaints" ] || {
    echo "$complaints"
    exit 1
}
# Not in a pipe, which would have the exit status of its last command.
protected=true
report=$(systemd-analyze security --offline=true --threshold=15 --no-pager "$1") || protected=false
printf '%s\n' "$report" | tail -n 1
"$protected"
