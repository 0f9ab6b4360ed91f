// Start-up happens once in a process: what must meet it twice runs in processes of its own.
#pragma once

#include <functional>

// Runs the work in a process of its own; its failures are failures of the test.
void in_another_process(const std::function<void()> &work);
