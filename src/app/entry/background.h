#pragma once

#include <chrono>
#include <functional>

namespace vantrel {

// Runs a program in a process of its own, without a terminal and in a session of its own. That
// process returns what the program returns, when it ends. The calling process returns 0 as soon as
// the program says that it is ready, its exit status when it has failed before, and otherwise 1.
//
// Until it is ready, the program has the caller's standard error, and of what else the caller has
// open nothing. No thread may run yet, and the three standard descriptors must be open.
int runInBackground(std::chrono::milliseconds timeout,
                    const std::function<int(std::function<void()> ready)>& program);

} // namespace vantrel
