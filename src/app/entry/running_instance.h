#pragma once

#include "app/state/command.h"
#include "platform/freedesktop/command_call.h"
#include "platform/x11/connection.h"

#include <functional>
#include <optional>
#include <string>

namespace vantrel {

// While it lives, an X server that hangs ends the process after some seconds, with an error
// message: every answer of the server is waited for.
class ServerTimeout {
public:
    ServerTimeout();
    ~ServerTimeout();
    ServerTimeout(const ServerTimeout&) = delete;
    ServerTimeout& operator=(const ServerTimeout&) = delete;
};

// Where the running instance takes commands; it may be ending by now. Nothing when none runs.
using FindInstance = std::function<std::optional<std::string>()>;
[[nodiscard]] FindInstance instanceAt(const std::string& sessionAddress);
// The connection must outlive it.
[[nodiscard]] FindInstance instanceOn(const x11::Connection& connection);

// Gives a command to the instance that is found. Nothing when none runs, or when it was ending. A
// command to quit is answered when the instance has gone.
[[nodiscard]] std::optional<CommandAnswer>
askRunningInstance(const FindInstance& find, const CommandWords& words, const Command& command);

// The answer where there is neither a compositor nor, as the error says, an X server.
[[nodiscard]] CommandAnswer unreachable(const x11::ConnectionError& error);

} // namespace vantrel
