#!/bin/sh
# usage: weak_unit_file.sh CHECK UNIT
# CHECK refuses the unit without its protections, and with a setting that systemd does not know.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
weak=$folder/camparamd.service

# refuses TEXT: the check fails and says this.
refuses()
{
    if sh "$check" "$weak" >"$folder/said" 2>&1; then
        echo "expected to fail: $(cat "$folder/said")"
        exit 1
    fi
    grep -e "$1" "$folder/said" || { echo "expected: $1"; cat "$folder/said"; exit 1; }
}

check=$1
sed -E '/^(NoNew|Capability|Ambient|Protect|Private|Restrict|SystemCall|Lock|Memory|User|SocketBind)/d' \
    "$2" >"$weak"
refuses 'exposure level.*UNSAFE'
sed 's/^NoNewPrivileges=/NoNewPrivilege=/' "$2" >"$weak"
refuses 'Unknown key'
