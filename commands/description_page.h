// One page of descriptions, as a datagram holds them with ease.
#pragma once

#include "description.h"

// Where a page begins: how many members of a row of the module table the pages before it told.
struct page_cursor {
    int row, member;
};

class description_page : public member_sink {
public:
    // Adds "modules" to the reply. Of the modules in the list, or of all for null; of them the
    // member of that name, or all for null.
    description_page(json_builder &in, const cJSON *wanted_modules, const cJSON *wanted_member,
                     page_cursor begin);

    void begin_module(int row, const para_module &module, const char *setter) override;
    void take(const char *name, json_ptr member) override;

    bool is_full() const { return full; }
    page_cursor next() const { return current; }

private:
    bool is_wanted(const char *module) const;
    bool is_told(int member) const;
    bool make_room_for(size_t bytes, bool always);
    void add_module();

    json_builder &reply;
    const cJSON *const list;
    const char *const only;
    const page_cursor from;

    cJSON *const modules;
    size_t used = 0;
    bool has_members = false;
    bool full = false;

    // Of the module that is being described.
    bool wanted = false;
    page_cursor current = {};
    const char *name = nullptr, *command = nullptr;
    cJSON *members = nullptr; // null: not in the page yet
};
