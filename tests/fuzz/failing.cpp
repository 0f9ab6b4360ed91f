// A target whose property does not hold for inputs that begin with "x".
#include "fuzz/support/target.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    require(size == 0 || data[0] != 'x', "an input begins with %c", data[0]);
    return 0;
}
