#pragma once

#include "ui/components/choice_button.h"

#include <string_view>

namespace vantrel {

// The pictogram of a mode.
[[nodiscard]] std::string_view modeSymbol(CursorMode mode);

// Switches the mode.
class ModeChoices : public ChoiceRow {
public:
    ModeChoices(ViewContext& view, Density density);
};

} // namespace vantrel
