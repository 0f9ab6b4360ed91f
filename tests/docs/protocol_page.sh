#!/bin/sh
# usage: protocol_page.sh PAGE DOCUMENT TABLE
# The commands that camparam-protocol(7) and the document list, with their modes, are those of the kit's
# table.
set -eu
# shellcheck source=tests/docs/page.sh
. "$(dirname "$0")/page.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# "NAME get", "NAME set", of lines such as "NAME (set or get)".
modes()
{
    tr -d '*(),' | awk '{ for (i = 2; i <= NF; i++) if ($i == "get" || $i == "set") print $1, $i }' | LC_ALL=C sort
}

tr '\n' ' ' <"$3" | grep -oE '\.name = "[a-z]+", *\.get = [a-z]+, \.set = [a-z]+' |
    sed -E 's/.*"([a-z]+)", *\.get = ([a-z]+), \.set = ([a-z]+)/\1 \2 \3/' |
    awk '$2 == "true" { print $1, "get" } $3 == "true" { print $1, "set" }' | LC_ALL=C sort >"$folder/table"
terms COMMANDS <"$1" | modes >"$folder/page"
same 'commands of the page' "$folder/page" "$folder/table"
sed -nE 's/^### ([a-z]+ \(.*\))$/\1/p' "$2" | modes >"$folder/page"
same 'commands of the document' "$folder/page" "$folder/table"
