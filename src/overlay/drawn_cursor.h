#pragma once

#include "platform/display.h"

namespace vantrel {

// An arrow of our own, for desktops that do not show theirs.
class DrawnCursor final : public CursorImages {
public:
    [[nodiscard]] CursorImage arrow(double scale) const override;
};

} // namespace vantrel
