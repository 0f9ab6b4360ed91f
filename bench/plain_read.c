#include "plain_read.h"

int plain_values[66];

int plain_read(int slot)
{
    return plain_values[slot];
}
