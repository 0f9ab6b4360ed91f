// Shared by the source files of the conf-file modules.
#pragma once

#include <pthread.h>

#include "modules/text/text_module.h"

extern text_registry conf_modules;

constexpr char netport[] = "netport"; // the module with functions and a work item of its own

// A reload takes the lock for writing: it replaces values one by one, and frees the objects on
// failure. Every other use of the objects takes it for reading. Not held while a hook runs.
pthread_rwlock_t &objects_lock(const text_module &module);

// A module by its name, for reading its objects until the end of the block. False for an unknown
// module and for one without values.
class loaded_conf {
public:
    explicit loaded_conf(const char *name) : module(find_module(conf_modules, name))
    {
        if (module != nullptr)
            pthread_rwlock_rdlock(&objects_lock(*module));
    }
    ~loaded_conf()
    {
        if (module != nullptr)
            pthread_rwlock_unlock(&objects_lock(*module));
    }
    loaded_conf(const loaded_conf &) = delete;
    loaded_conf &operator=(const loaded_conf &) = delete;

    explicit operator bool() const { return module != nullptr && module->cur != nullptr; }
    text_module &operator*() const { return *module; }
    text_module *operator->() const { return module; }

private:
    text_module *const module;
};
