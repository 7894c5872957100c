#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace vantrel::demo {

struct Interrupted {};

// From here on a signal that asks the demo to end makes the waits below throw Interrupted, so that
// everything that was started is ended on the way out. So does the end of the process that started
// the demo.
void catchInterruptions();

void sleepUntil(std::chrono::steady_clock::time_point moment);

// Whether the condition comes to hold within ten seconds.
[[nodiscard]] bool waitUninterrupted(const std::function<bool()>& condition);

// Throws, and says what was not seen, when the condition does not come to hold within ten seconds.
void expect(const std::string& what, const std::function<bool()>& condition);

} // namespace vantrel::demo
