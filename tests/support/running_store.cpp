#include "support/running_store.h"

#include <gtest/gtest.h>

#include "camparam/control.h"

RunningStore::~RunningStore()
{
    if (started)
        stop();
}

void RunningStore::start()
{
    ASSERT_EQ(platformparam_init(), 0);
    started = true;
}

void RunningStore::stop()
{
    platformparam_stop(1);
    started = false;
}
