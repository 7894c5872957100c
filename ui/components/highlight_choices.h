#pragma once

#include "ui/components/view_context.h"

namespace vantrel {

// Picks the style of the highlight among live samples. In the small form for panels, or in the
// large one.
[[nodiscard]] QWidget* highlightChoices(ViewContext& view, bool compact);

} // namespace vantrel
