// A fixture that runs camparamd on temporary folders with the files of a lens. Share maps are off
// unless the test turns them on, as their names are global.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "camparam/camparam.h"
#include "host/process.h"
#include "support/client.h"
#include "support/device.h"
#include "support/folders.h"
#include "support/json_text.h"
#include "support/running_store.h"

// What camparamd's commands answer when they cannot be carried out.
inline const char *const invalid_command = "{'err':'Invalid API command'}";

class HostProcess : public Folders {
protected:
    // Writes the files of a lens: focus_mode 0 to 3, default 1; zoom_value -100 to 1000, default 0.
    // Its other members are absent.
    HostProcess();

    // Starts a store in the test's own process, in place of camparamd.
    void start_store() { store.start(); }
    // Starts camparamd on the fixture's folders and waits until it is ready.
    void start_host(const std::vector<std::string> &options = {});
    // Runs camparamd with only these arguments until it exits. Returns its exit status.
    int run_host(const std::vector<std::string> &arguments);
    // Sends a signal, waits for the exit and returns the exit status.
    int end_host(int number);

    // Writes conf files "netport" and "overlay", 160 keys each, whose description exceeds a
    // datagram.
    void write_long_conf_files();

    bool host_has_logged(const std::string &text) const;
    bool host_has_open(const std::string &path) const;

    // Waits until the saved file contains exactly this text, with quotes for apostrophes, and a
    // zero byte. Returns whether it does.
    bool saves(const std::string &name, const std::string &text);

    // Turns share maps on; none is left of an earlier host.
    void share();

    std::unique_ptr<process> host;

private:
    RunningStore store;
    bool shares = false;
};
