// Setting members of "af", which has no set request.
#pragma once

#include "outcome.h"

// Sets the member of the item's name. Returns why it was refused.
reason set_lens(const cJSON *item);
