#!/bin/sh
# usage: soname.sh LIBRARY NAME
set -eu
name=$(readelf -d "$1" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$name" = "$2" ] || { echo "is named $name, not $2"; exit 1; }
