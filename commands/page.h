// Answers in pages of at most 4,000 bytes.
#pragma once

#include <cstddef>

// Of what is listed; the reply's other members need the rest.
inline constexpr size_t most_page_bytes = 3800;
