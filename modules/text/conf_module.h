// Shared by the source files of the conf-file modules.
#pragma once

#include <pthread.h>

#include "modules/text/text_module.h"

extern text_registry conf_modules;

// Taken for writing by a reload, which replaces values one by one and frees the objects on failure;
// for reading by every other use of an object. Not held while a hook runs.
extern pthread_rwlock_t conf_objects_lock;

// The module, if it has values; the caller holds conf_objects_lock.
text_module *find_loaded(const char *name);
