// A camparamd on folders of its own, with a lens of its own. It shares no memory, whose names
// belong to the whole machine, unless the test says so.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/process.h"
#include "support/store.h"

class HostProcess : public Store {
protected:
    // Writes the files of a lens: focus_mode 0 to 3, default 1; zoom_value -100 to 1000, default 0.
    // The other members are absent.
    HostProcess();

    // Starts camparamd on the fixture's folders and waits until it is ready.
    void start_host(const std::vector<std::string> &options = {});
    // Runs camparamd with these words alone, to its end. Returns its exit status.
    int run_host(const std::vector<std::string> &words);
    // Ends it by a signal and returns its exit status.
    int end_host(int number);

    // Writes conf files "netport" and "overlay", 160 keys each, whose description exceeds a
    // datagram.
    void write_long_conf_files();

    bool host_has_logged(const std::string &text) const;

    // Waits until the saved file has exactly these bytes and the zero byte behind them; an
    // apostrophe stands for a quote.
    bool saves(const std::string &name, const std::string &text);

    // Gives the test and what it starts a folder of shared memory of their own, and lets camparamd
    // share.
    void share();

    std::unique_ptr<process> host;

private:
    bool shares = false;
};
