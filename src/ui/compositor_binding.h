#pragma once

#include "preferences/shortcut.h"

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// The line for the configuration of a compositor that runs a command at a shortcut, in the words of
// the compositor that names its session so. The command alone where those are not known, or there
// is no shortcut that they have words for.
[[nodiscard]] std::string compositorBinding(std::string_view session,
                                            const std::optional<Shortcut>& shortcut,
                                            std::string_view command);

} // namespace vantrel
