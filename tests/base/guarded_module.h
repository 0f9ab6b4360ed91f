// One module of each kind in turn, with the guard on.
#pragma once

#include <optional>
#include <string>

#include "camparam/guard.h"
#include "support/every_kind.h"

class GuardedModule : public EveryKind, public testing::WithParamInterface<module_kind> {
protected:
    GuardedModule()
    {
        platformparam_set_guard(1);
        if (kind.name == "LegacyMisc")
            use_legacy_misc();
    }

    para_module_status status() const { return status_of(kind.row); }

    void write_file_with(int number, const std::string &suffix = "")
    {
        write_data(kind.file + suffix, text_with(kind, number));
    }
    std::optional<std::string> read(const std::string &suffix = "") const
    {
        return read_file(path_of(kind, suffix));
    }

    const module_kind &kind = GetParam();
};
