#pragma once

#include "app/state/command.h"
#include "platform/freedesktop/command_call.h"

#include <functional>

namespace vantrel {

// A process that is about to be the program, or to find that another one is.
struct Start {
    int argc;
    char** argv;
    CommandWords words;
    Command command;
    // Called when the command was carried out, by this process, which has become the program, or by
    // one that was quicker.
    std::function<void()> launched;
};

// The function of the program's module, by its name there. Returns the exit status of the process.
using RunProgram = int(const Start&);
inline constexpr auto runProgramName = "vantrelRunProgram";

} // namespace vantrel
