// A JSON file of a device, which must hold an object.
#pragma once

#include <unordered_map>

#include "client/files/checked_file.h"
#include "client/json.h"

class json_document : public checked_file {
public:
    json_document(device_folder &folder, const std::string &name);

    // The object; null without one, of which a file that is there has told.
    const cJSON *root() const { return tree.get(); }

    int line_of(const cJSON *node) const;

    using checked_file::fault;
    using checked_file::warn;
    void fault(const cJSON *node, const std::string &member, const std::string &reason);
    void warn(const cJSON *node, const std::string &member, const std::string &reason);

    // An object's members, in order. What comes twice is a fault, and counts the first time. The
    // prefix stands before the names, such as "video0.".
    std::vector<const cJSON *> members(const cJSON *object, const std::string &prefix = "");

private:
    void parse();

    json_ptr tree;
    std::unordered_map<const cJSON *, int> lines;
};

// The first member of that key but for the case of its letters, as the store finds it; null
// without.
const cJSON *find_key(const cJSON *object, const char *key);
