#pragma once

#include "app/state/command.h"
#include "platform/freedesktop/command_call.h"

#include <functional>

namespace vantrel {

struct Start;
// The function of a module. Returns the exit status of the process.
using RunModule = int(const Start&);

// A process that is about to be the program, or to give the running one a command.
struct Start {
    int argc;
    char** argv;
    CommandWords words;
    Command command;
    // Called when the command was carried out, by this process, which has become the program, or by
    // one that was quicker.
    std::function<void()> launched;
    // For a command that finds none running.
    RunModule* runProgram;
};

struct Module {
    const char* file;
    const char* function; // its name there
};
inline constexpr Module programModule{"program.so", "vantrelRunProgram"};
inline constexpr Module commandModule{"command.so", "vantrelRunCommand"};

} // namespace vantrel
