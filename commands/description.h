// The description of a module's members, as the command "describe" tells it.
// docs/message-protocol.md has its form.
#pragma once

#include "json.h"

class description {
public:
    description(json_builder &builder, cJSON *of_members) : json(builder), members(of_members) {}

    // Each begins a member of one kind. What follows completes it.
    void begin_number(const char *name, int min, int max);
    void begin_enum(const char *name);
    void begin_text(const char *name);

    // Of an enum, in the order of the numbers.
    void add_name(const char *name);
    // Null, such as for a number that has no name: the value is omitted.
    void add_default(const char *value);
    void add_current(const char *value);
    void add_default(int value);
    void add_current(int value);
    // Set requests cannot change the member.
    void mark_read_only();

private:
    void begin(const char *name, const char *kind);

    json_builder &json;
    cJSON *const members;
    cJSON *member = nullptr; // that was begun last
    cJSON *names = nullptr;  // its
};

// The present members of a module, given the name of its row. False when the device does not use
// the row, such as "video3" with three streams.
bool describe_af(const char *module, description &members);
bool describe_audio(const char *module, description &members);
bool describe_video(const char *module, description &members);
bool describe_isp(const char *module, description &members);
bool describe_json_module(const char *module, description &members);
bool describe_conf_module(const char *module, description &members);
