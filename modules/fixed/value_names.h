// Names that stand for the values 0, 1, 2 ... of a member.
#pragma once

struct value_names {
    const char *const *names;
    int count;
};

template <int count> constexpr value_names names_of(const char *const (&names)[count])
{
    return {names, count};
}

// Of every member whose values have no names: the one entry "null".
extern const value_names null_names;

constexpr int no_number = -1000;

// The value of a text in a file: the last name that begins with it, or -1.
int name_in_file(const value_names &names, const char *text);

// The value of a text from a client: the first name that begins with it, else the number that its
// digits make, else no_number, as for no text at all.
int number_of_text(const value_names &names, const char *text);

// The value of exactly that name, or -1.
int exact_name(const value_names &names, const char *text);

// The name of a value, or null when it has none.
const char *name_of_number(const value_names &names, int value);
