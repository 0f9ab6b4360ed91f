#!/bin/sh
# To be sourced, with the folder of the sources as first argument. Makes a tree with the checks and
# little else, and goes there.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp -r "$1/scripts" "$folder"
cd "$folder"
unset GIT_DIR GIT_INDEX_FILE GIT_WORK_TREE
git init -q
mkdir -p include/camparam base modules/text modules/odm server runtime tests docs
echo '/build/' >.gitignore

# file NAME: writes a file, and the folder it is in.
file()
{
    mkdir -p "$(dirname "$1")"
    cat >"$1"
}

said=$folder/build/said
mkdir build

passes()
{
    scripts/lint "$@" >"$said" 2>&1 || { echo "expected to pass: lint $*"; cat "$said"; exit 1; }
}

# fails CHECK TEXT: the check fails and says this.
fails()
{
    if scripts/lint "$1" >"$said" 2>&1; then
        echo "expected to fail: lint $1"
        exit 1
    fi
    grep -F -e "$2" "$said" || { echo "expected: $2"; cat "$said"; exit 1; }
}
