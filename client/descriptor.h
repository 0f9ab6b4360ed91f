// A file descriptor and its end.
#pragma once

#include <unistd.h>

class descriptor {
public:
    explicit descriptor(int opened) : number(opened) {}
    ~descriptor()
    {
        if (number >= 0)
            close(number);
    }

    descriptor(const descriptor &) = delete;
    descriptor &operator=(const descriptor &) = delete;

    int get() const { return number; }

private:
    int number; // negative: none
};
