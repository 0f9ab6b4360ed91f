#!/bin/sh
# To be sourced: what a manual page in scdoc says.

# The lines of a section: section NAME <PAGE
section()
{
    awk -v name="# $1" '/^# / { inside = $0 == name; next } inside'
}

# What a section defines: the first lines of its entries. Their text is indented, or follows a blank line.
terms()
{
    section "$1" | grep '^[*_]' || true
}

# The long options in a text, each once.
long_options()
{
    grep -oE -e '--[a-z][a-z0-9-]*' | LC_ALL=C sort -u
}

# Fails unless two lists of lines are the same: same WHAT LEFT RIGHT
same()
{
    [ -s "$2" ] || { echo "$1: none found"; exit 1; }
    diff "$2" "$3" || { echo "$1: < in the page only, > not in the page"; exit 1; }
}
