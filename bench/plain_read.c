#include "plain_read.h"

int plain_values[PARA_VIDEO_SLOTS];

int plain_read(int slot)
{
    return plain_values[slot];
}
