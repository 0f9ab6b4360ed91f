#!/bin/sh
# usage: host_page.sh HOST PAGE SIGNALS
# Compares camparamd(8) with the host's own help, with the signals that its source handles, and with how
# it ends.
set -eu
# shellcheck source=tests/docs/page.sh
. "$(dirname "$0")/page.sh"
host=$1
page=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

terms OPTIONS <"$page" | long_options >"$folder/page"
"$host" --help | awk '/^  -/ { print $1 }' | long_options >"$folder/help"
same options "$folder/page" "$folder/help"

terms SIGNALS <"$page" | grep -oE 'SIG[A-Z0-9]+' | LC_ALL=C sort >"$folder/page"
grep -oE '\.number = SIG[A-Z0-9]+' "$3" | sed 's/.* //' | LC_ALL=C sort >"$folder/help"
same signals "$folder/page" "$folder/help"

# ends STATUS ARGUMENT...: and the page has that status.
ends()
{
    expected=$1
    shift
    status=0
    "$host" "$@" >/dev/null 2>&1 || status=$?
    [ "$status" = "$expected" ] || { echo "camparamd $*: ends with $status"; exit 1; }
    echo "$expected" >>"$folder/ends"
}

ends 0 --version
ends 1 --home "$folder/none" --data "$folder/data"
ends 2 --no-such-option
terms 'EXIT STATUS' <"$page" | tr -d '*' >"$folder/page"
same 'exit statuses' "$folder/page" "$folder/ends"

# Defaults that the page tells are those of the help.
for option in home data trace www2json port requests-per-second reply-bytes-per-second; do
    value=$("$host" --help | sed -nE "s/^  --$option [^=]*=([^ ]+).*/\1/p")
    [ -n "$value" ] || { echo "the help tells no default of --$option"; exit 1; }
    awk -v term="*--$option*" 'index($0, term) == 1 { inside = 1; next } /^[*#]/ { inside = 0 } inside' "$page" |
        grep -qwF -e "$value" -e "_${value}_" || { echo "--$option: the page does not tell $value"; exit 1; }
done
