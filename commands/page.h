// How long answers are.
#pragma once

#include <cstddef>

// Of what is listed in a page of at most 4,000 bytes; the reply's other members need the rest.
inline constexpr size_t most_page_bytes = 3800;

// Of what is listed in an answer without pages, or is told alone: a datagram has 65,507.
inline constexpr size_t most_listed_bytes = 65000;
