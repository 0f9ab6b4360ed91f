// The command "check": tells what a set request would do, and does nothing.
#include "checked.h"
#include "command.h"

answered answer_check(const request &request, json_builder &reply)
{
    if (request.data == nullptr)
        return answered::invalid;
    outcome result(reply);
    check_values(request.data, result);
    return answered::now;
}
