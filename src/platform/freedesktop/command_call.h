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

// What a running program is sent.
struct CommandRequest {
    CommandWords words;
    // By which the compositor lets windows come to the front, as whoever started the command was
    // given it (XDG_ACTIVATION_TOKEN); may be empty.
    std::string activationToken{};

    bool operator==(const CommandRequest&) const = default;
};

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

    [[nodiscard]] Outcome<CommandAnswer> ask(const CommandRequest& request, Deadline deadline);
    // Whether the program ends in time.
    [[nodiscard]] bool awaitEnd(Deadline deadline);

private:
    explicit CommandCall(UniqueDescriptor socket) : socket_(std::move(socket)) {}

    UniqueDescriptor socket_;
};

} // namespace vantrel
