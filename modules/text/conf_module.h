// What the files of the conf-file modules share.
#pragma once

#include <pthread.h>

#include "modules/text/text_module.h"

extern text_registry conf_modules;

// A reload changes the values of a module one by one, and one that fails frees its objects: held
// for writing meanwhile, and for reading while an object is used. Never held while a hook runs.
extern pthread_rwlock_t conf_objects_lock;

// The module, if it has values; the caller holds conf_objects_lock.
text_module *find_loaded(const char *name);
