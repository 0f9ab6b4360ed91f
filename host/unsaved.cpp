#include "unsaved.h"

#include "camparam/commands.h"
#include "log.h"

static void tell(void *, const char *module, const char *reason, int)
{
    log_line("%s is not saved: %s", module, reason);
}

bool tell_unsaved()
{
    return para_commands_unsaved(tell, nullptr) > 0;
}
