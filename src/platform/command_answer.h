#pragma once

#include <cstdint>
#include <string>

namespace vantrel {

// What came of a command, as the process that was given it tells its caller.
struct CommandAnswer {
    // Each is the exit status of the process.
    enum class Status : std::uint8_t {
        done = 0,
        failed = 1,
        wrongUsage = 2,
        notRunning = 3,
    };

    Status status = Status::done;
    std::string text{}; // for standard output when it was done, an error message otherwise

    bool operator==(const CommandAnswer&) const = default;
};

} // namespace vantrel
