// Start-up happens once in a process, so a target that starts the store does it in forked ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

// Runs the action in a process of its own and waits for its end. What it covered counts; when it
// fails, this process aborts as well.
void in_child(const std::function<void()> &action);

// Runs a target that calls in_child(). Under libFuzzer it runs in a second process, which serves
// one input after another and stays small, so that its forks take little time.
void serve_input(void (*target)(const uint8_t *data, size_t size), const uint8_t *data,
                 size_t size);
