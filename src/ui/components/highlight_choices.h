#pragma once

#include "ui/components/choice_button.h"

namespace vantrel {

// Picks the style of the highlight among live samples.
class HighlightChoices : public ChoiceRow {
public:
    HighlightChoices(ViewContext& view, Density density);
};

} // namespace vantrel
