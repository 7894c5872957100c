#pragma once

#include "platform/freedesktop/command_call.h"

#include <string>
#include <string_view>

namespace vantrel {

// The text in the language of the command line, which is found by the rule of the windows: as the
// stored settings say, else as the desktop prefers. Decided once in a process.
[[nodiscard]] std::string said(std::string_view english, std::string_view chinese);

// An answer without an instance.
[[nodiscard]] CommandAnswer failure(std::string text);

// Tells the caller of this process, and returns its exit status.
int report(const CommandAnswer& answer);

} // namespace vantrel
