#pragma once

#include "app/state/command.h"
#include "platform/freedesktop/command_call.h"
#include "platform/x11/connection.h"

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

// Gives a command to the instance that runs on this display. Nothing when none runs, or when it was
// ending. A command to quit is answered when the instance has gone.
[[nodiscard]] std::optional<CommandAnswer> askRunningInstance(const x11::Connection& connection,
                                                              const CommandWords& words,
                                                              const Command& command);

// An answer without an instance.
[[nodiscard]] CommandAnswer failure(std::string text);

// Tells the caller of this process, and returns its exit status.
int report(const CommandAnswer& answer);

} // namespace vantrel
