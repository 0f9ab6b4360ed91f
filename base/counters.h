// What the store counts since its start. Any thread; counts wrap.
#pragma once

enum class counter { received, dropped, replies, saves, failed_saves };

void count_one(counter which);
