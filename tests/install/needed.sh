#!/bin/sh
# usage: needed.sh LIBRARY NEEDED...
# Compares the libraries that a library needs at run time with the given, sorted ones.
set -eu
library=$1
shift
needed=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | LC_ALL=C sort | xargs)
[ "$needed" = "$*" ] || { echo "needs $needed, not $*"; exit 1; }
