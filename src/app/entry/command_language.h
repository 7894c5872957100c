#pragma once

#include <string>
#include <string_view>

namespace vantrel {

// Whether the command line speaks English, by the rule of the windows: as the stored settings say,
// else as the desktop prefers. Decided once in a process.
[[nodiscard]] bool commandLineUsesEnglish();

// The text in that language.
[[nodiscard]] std::string said(std::string_view english, std::string_view chinese);

} // namespace vantrel
