#pragma once

#include "ui/components/view_context.h"

#include <string_view>

namespace vantrel {

// The pictogram of a mode.
[[nodiscard]] std::string_view modeSymbol(CursorMode mode);

// Switches the mode. In the small form for panels and headers, or in the large one.
[[nodiscard]] QWidget* modeChoices(ViewContext& view, bool compact);

} // namespace vantrel
