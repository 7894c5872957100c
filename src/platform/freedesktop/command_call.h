#pragma once

#include "platform/control.h"
#include "platform/freedesktop/unique_descriptor.h"

#include <chrono>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vantrel {

using CommandWords = std::vector<std::string>;

// One command to a running program.
class CommandCall {
public:
    using Deadline = std::chrono::steady_clock::time_point;
    enum class Failure : std::uint8_t {
        unanswered, // in time
        gone,       // the program has ended, or takes no commands there
        otherUser,  // a process of another user takes them
    };
    template <typename T>
    using Outcome = std::variant<T, Failure>;

    static Outcome<CommandCall> open(const std::string& address);

    [[nodiscard]] Outcome<CommandAnswer> ask(const CommandWords& words, Deadline deadline);
    // Whether the program ends in time.
    [[nodiscard]] bool awaitEnd(Deadline deadline);

private:
    explicit CommandCall(UniqueDescriptor socket) : socket_(std::move(socket)) {}

    UniqueDescriptor socket_;
};

} // namespace vantrel
