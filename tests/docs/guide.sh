#!/bin/sh
# usage: guide.sh MKDOCS SOURCES
# Builds the guide in a folder: without a warning, with every page of docs/, with links that lead somewhere, and with
# nothing that a browser would fetch from elsewhere.
set -eu
sources=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cd "$sources"
"$1" build --strict --quiet --site-dir "$folder/guide" >"$folder/said" 2>&1 || { cat "$folder/said"; exit 1; }
if grep -E '^(WARNING|ERROR)' "$folder/said"; then
    exit 1
fi

cd "$folder/guide"
for page in "$sources"/docs/*.md; do
    name=${page##*/}
    [ -s "${name%.md}.html" ] || { echo "no page of $name"; exit 1; }
    grep -q "href=\"${name%.md}.html\"" index.html || { echo "$name: nothing leads there from the first page"; exit 1; }
done
others=$(find . -name '*.scd' -o -name '*.awk' -o -name '*.py' -o -name '*.txt' -o -name Doxyfile)
[ -z "$others" ] || { echo "no pages: $others"; exit 1; }

if grep -noE '<(script|link|img|iframe)[^>]* (src|href)="?(https?:)?//[^ >]*' ./*.html; then
    echo 'fetched from elsewhere'
    exit 1
fi

for page in *.html; do
    grep -oE 'href="[^":]*#[^"]+"' "$page" | sed "s|^href=\"|$page |; s/\"\$//"
done | LC_ALL=C sort -u >"$folder/links"
while read -r page link; do
    target=${link%%#*}
    [ -n "$target" ] || target=$page
    grep -qF "id=\"${link#*#}\"" "$target" || { echo "$page: $link leads nowhere"; exit 1; }
done <"$folder/links"
echo "$(wc -l <"$folder/links") links to places in pages"
[ "$(wc -l <"$folder/links")" -gt 10 ]
