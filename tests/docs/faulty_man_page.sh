#!/bin/sh
# usage: faulty_man_page.sh SCDOC CHECK
# CHECK refuses a page that scdoc does not take, one that man warns of, and a folder without pages.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# refuses TEXT: the check fails and says this.
refuses()
{
    if sh "$check" "$scdoc" "$folder" >"$folder/said" 2>&1; then
        echo "expected to fail: $(cat "$folder/said")"
        exit 1
    fi
    grep -e "$1" "$folder/said" || { echo "expected: $1"; cat "$folder/said"; exit 1; }
}

scdoc=$1
check=$2
refuses 'is not built'
printf 'no first line\n' >"$folder/a.1.scd"
refuses 'a.1.scd: is not built'

# A scdoc that makes a macro that does not exist.
printf '#!/bin/sh\nprintf ".TH a 1\\n.NOSUCHMACRO\\ntext\\n"\n' >"$folder/scdoc"
chmod +x "$folder/scdoc"
scdoc=$folder/scdoc
refuses 'NOSUCHMACRO'
