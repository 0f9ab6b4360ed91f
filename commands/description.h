// Descriptions of modules' members, as the command "describe" tells them. docs/message-protocol.md
// has their form.
#pragma once

#include "camparam/module.h"
#include "descriptions.h"
#include "json.h"

// Takes the members of modules, one by one.
//
// The functions have bodies because pure ones would need the C++ run-time library.
class member_sink {
public:
    // The members of a row follow. command: that sets them; null: a set request does.
    virtual void begin_module(int, const para_module &, const char *) {}
    // Null: memory ran out for this or other members.
    virtual void take(const char *, json_ptr) {}

protected:
    ~member_sink() = default;
};

// Makes the description of one member after the other.
class description {
public:
    explicit description(member_sink &for_sink) : sink(for_sink) {}
    ~description() { end_member(); }
    description(const description &) = delete;
    description &operator=(const description &) = delete;

    // Each begins a member of one kind, whose name must stay until the next begins. What follows
    // completes it.
    void begin_number(const char *name, int min, int max);
    void begin_number(const char *name); // of any size
    void begin_enum(const char *name);
    void begin_text(const char *name);
    void begin_json(const char *name); // any value

    // Of an enum, in the order of the numbers.
    void add_name(const char *name);
    // Null, such as for a number that has no name: the value is omitted.
    void add_default(const char *value);
    void add_start(const char *value);
    void add_current(const char *value);
    void add_default(int value);
    void add_start(int value);
    void add_current(double value);
    void add_current(json_ptr value);
    // Set requests cannot change the member.
    void mark_read_only();
    // Memory ran out for what would be members.
    void lack();

private:
    void begin(const char *name, const char *kind);
    void end_member();

    member_sink &sink;
    const char *member = nullptr; // name of the one that was begun; null: none
    json_builder json;            // its description
    cJSON *names = nullptr;       // its
};

// Give the sink the present members of a module, given the name of its row.
void describe_af(const char *module, member_sink &sink);
void describe_audio(const char *module, member_sink &sink);
void describe_video(const char *module, member_sink &sink);
void describe_isp(const char *module, member_sink &sink);
void describe_json_module(const char *module, member_sink &sink);
void describe_conf_module(const char *module, member_sink &sink);

// Those of a module of the host's own, which it asks.
void describe_host_module(const para_module &row, member_sink &sink);

// Whether the device uses the row, unlike "video3" with three streams.
bool is_stream_in_use(const char *module);

// Whether requests can read settings of the row.
bool is_described(const para_module &row);

// Describes a row that is, with what the device tells of its members.
struct describing {
    const descriptions &texts;
    bool show_secrets;
};
void describe_row(int row, const describing &how, member_sink &sink);

// Describes all of them, in the order of the module table.
void describe_all(const describing &how, member_sink &sink);
