#pragma once

#include "app/state/app_state.h"
#include "platform/control.h"

#include <string>

namespace vantrel {

[[nodiscard]] ProgramStatus programStatus(const AppState& state, const Bundle& bundle);

// One line.
[[nodiscard]] std::string toJson(const ProgramStatus& status);

} // namespace vantrel
