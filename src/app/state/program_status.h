#pragma once

#include "app/state/app_state.h"
#include "platform/control.h"

#include <string>

namespace vantrel {

[[nodiscard]] ProgramStatus programStatus(const AppState& state, const Desktop& desktop);

// One line.
[[nodiscard]] std::string toJson(const ProgramStatus& status);

} // namespace vantrel
