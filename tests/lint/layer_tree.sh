#!/bin/sh
# To be sourced behind tree.sh: a store in which each folder uses what it may.

file CMakeLists.txt <<'TEXT'
cmake_minimum_required(VERSION 3.22)
project(camparam LANGUAGES C)
add_library(camparam SHARED base/change.c modules/odm/odm.c modules/text/text.c modules/fixed/fixed.c
    server/server.c runtime/table.c)
target_include_directories(camparam PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
add_subdirectory(platform)
TEXT
file platform/CMakeLists.txt <<'TEXT'
add_library(camparam_platform SHARED trace.c)
TEXT
file platform/trace.c <<'TEXT'
void wnk_traceout(void) {}
TEXT
file include/camparam/odm.h <<'TEXT'
void wnk_traceout(void);
int get_odm(void);
TEXT
file include/camparam/module.h <<'TEXT'
extern int module_para_handle[64], module_para_handle_num;
TEXT
file base/change.h <<'TEXT'
int change(void);
TEXT
file base/change.c <<'TEXT'
#include "base/change.h"
#include "camparam/odm.h"
int change(void) { wnk_traceout(); return 0; }
TEXT
file modules/odm/odm.c <<'TEXT'
#include "camparam/odm.h"
#include "base/change.h"
int get_odm(void) { return change(); }
TEXT
file modules/fixed/fixed.c <<'TEXT'
#include <camparam/odm.h>
int get_fixed(void) { return get_odm(); }
TEXT
file modules/text/text.h <<'TEXT'
int get_text(void);
TEXT
file modules/text/text.c <<'TEXT'
#include "text.h"
#include "base/change.h"
int get_text(void) { return change(); }
TEXT
file server/server.c <<'TEXT'
#include "camparam/module.h"
int serve(void) { return module_para_handle[module_para_handle_num]; }
TEXT
file runtime/table.h <<'TEXT'
int turn(void);
TEXT
file runtime/table.c <<'TEXT'
#include "runtime/table.h"
#include "camparam/module.h"
#include "modules/text/text.h"
int module_para_handle[64], module_para_handle_num;
int serve(void);
int turn(void) { return serve() + get_text(); }
TEXT
