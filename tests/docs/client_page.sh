#!/bin/sh
# usage: client_page.sh CLIENT PAGE SOURCES
# Compares camparam(1) with the client's own help: commands, the options of each, exit statuses; and
# with the variables that its sources read.
set -eu
# shellcheck source=tests/docs/page.sh
. "$(dirname "$0")/page.sh"
client=$1
page=$2
sources=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# The commands in a help text.
commands_in()
{
    awk '/^Subcommands:/ { inside = 1; next } /^$/ { inside = 0 } inside && /^  [a-z]/ { print $1 }'
}

# The commands with those of groups, such as "www get".
all_commands()
{
    "$client" --help | commands_in | while read -r command; do
        inner=$("$client" "$command" --help | commands_in)
        [ -n "$inner" ] || echo "$command"
        for name in $inner; do
            echo "$command $name"
        done
    done | LC_ALL=C sort
}

# The options in the part "Options:" of a help text, but for the way to that text.
options_in()
{
    awk '/^Options:/ { inside = 1; next } /^$/ { inside = 0 } inside && /^  -/ { print $1 }' |
        long_options | grep -vx -e --help
}

# The line of the page that begins with the command.
synopsis()
{
    section COMMANDS <"$page" | grep -E "^\*$1(\*| [^a-z]|$)" || true
}

section COMMANDS <"$page" | sed -nE 's/^\*([a-z]+( (get|set))?)\*.*/\1/p' | LC_ALL=C sort >"$folder/page"
all_commands >"$folder/help"
same commands "$folder/page" "$folder/help"

while read -r command; do
    synopsis "$command" | long_options >"$folder/page" || true
    # shellcheck disable=SC2086 # words
    "$client" $command --help | options_in >"$folder/help" || true
    diff "$folder/page" "$folder/help" ||
        { echo "options of $command: < in the page only, > not in the page"; exit 1; }
    cat "$folder/help" >>"$folder/all"
done <<EOT
$(all_commands)
EOT
[ "$(wc -l <"$folder/all")" -ge 10 ] || { echo 'the help lists no options'; exit 1; }

terms OPTIONS <"$page" | long_options | grep -vx -e --help >"$folder/page"
"$client" --help | options_in >"$folder/help"
same options "$folder/page" "$folder/help"

terms 'EXIT STATUS' <"$page" | tr -d '*' >"$folder/page"
"$client" --help | sed -n '/^Exit status:/,$p' | grep -oE '\b[0-9]+ [a-z]' | sed 's/ .*//' >"$folder/help"
same 'exit statuses' "$folder/page" "$folder/help"
sed -nE 's/^ +[A-Z_]+ = ([0-9]+),/\1/p' "$sources/client/failure.h" >"$folder/help"
same 'exit statuses in the source' "$folder/page" "$folder/help"

terms ENVIRONMENT <"$page" | tr -d '*' | LC_ALL=C sort >"$folder/page"
grep -rhoE 'getenv\("[A-Z_]+"\)' "$sources/cli" "$sources/client" |
    sed 's/.*("//; s/").*//' | LC_ALL=C sort -u >"$folder/help"
same variables "$folder/page" "$folder/help"
