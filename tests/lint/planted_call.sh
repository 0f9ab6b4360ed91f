#!/bin/sh
# usage: planted_call.sh SOURCE_DIR
# A call is seen without an include, and through a header of the interface that anybody may include.
# shellcheck source=tests/lint/tree.sh
. "$(dirname "$0")/tree.sh"
tests=$1/tests/lint
# shellcheck source=tests/lint/layer_tree.sh
. "$tests/layer_tree.sh"

passes layers

# plant FILE CODE SYMBOL SOURCE: the symbol, which the source defines, is refused.
plant()
{
    cp "$1" build/before
    printf '%s\n' "$2" >>"$1"
    fails layers "$1: $(dirname "$1") may not use $3 of $4"
    cp build/before "$1"
}
plant modules/text/text.c '#include "camparam/odm.h"
int get_both(void) { return get_odm(); }' get_odm modules/odm/odm.c
plant base/change.c 'int turn(void);
int again(void) { return turn(); }' turn runtime/table.c
plant server/server.c 'int get_text(void);
int (*const getter)(void) = get_text;' get_text modules/text/text.c
plant platform/trace.c 'int change(void);
int trace_change(void) { return change(); }' change base/change.c
passes layers

echo 'no C' >>base/change.c
fails layers 'error'
