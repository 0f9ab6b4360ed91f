// Machine words that several threads share without a lock, as the library's own.
#pragma once

template <typename word> word load_word(const word &from)
{
    return __atomic_load_n(&from, __ATOMIC_RELAXED);
}
