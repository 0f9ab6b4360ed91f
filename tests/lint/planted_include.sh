#!/bin/sh
# usage: planted_include.sh SOURCE_DIR
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"
tests=$1/tests/lint
# shellcheck source=tests/lint/layer_tree.sh
. "$tests/layer_tree.sh"

passes layers

# plant FILE INCLUDE FOLDER: the include is refused as long as it is there.
plant()
{
    cp "$1" build/before
    { echo "#include $2"; cat build/before; } >"$1"
    fails layers "$1: $3 may not use"
    cp build/before "$1"
}
plant base/change.c '"runtime/table.h"' base
plant base/change.h '"../modules/text/text.h"' base
plant include/camparam/odm.h '<base/change.h>' include
plant server/server.c '"modules/text/text.h"' server
plant modules/odm/odm.c '  "modules/text/text.h" // once more' modules/odm
plant platform/trace.c '"base/change.h"' platform

echo 'int nobody;' | file strange/new.c
fails layers 'strange/new.c: its folder has no row'
rm strange/new.c
passes layers
