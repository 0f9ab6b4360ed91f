// A parameter store on folders of its own, and a client that talks to it over UDP.
#pragma once

#include "camparam/camparam.h"
#include "support/client.h"
#include "support/device.h"
#include "support/folders.h"
#include "support/json_text.h"
#include "support/running_store.h"

// Nothing is started; the store is stopped at the end if it still runs.
class Store : public Folders {
protected:
    void start_store() { store.start(); }
    void stop_store() { store.stop(); }

private:
    RunningStore store;
};
