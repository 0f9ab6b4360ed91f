#include "camparam/control.h"
#include "commands.h"
#include "request.h"

int save_command(int, para_message *message, cJSON **reply)
{
    platformparam_save();
    *reply = start_reply(parse_request(*message)).release();
    return 0;
}
