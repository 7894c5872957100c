#pragma once

#include "ui/components/pickers.h"
#include "ui/components/status_badge.h"
#include "ui/components/switch_toggle.h"
#include "ui/components/view_context.h"

// Controls that more than one view offers.

namespace vantrel {

inline constexpr Text tagline{"Make your cursor easy to follow", "让鼠标更容易被看见"};

// Tells the mode, and whether it shows anything.
[[nodiscard]] StatusBadge* modeBadge(ViewContext& view);

[[nodiscard]] QWidget* highlightColors(ViewContext& view);
[[nodiscard]] QWidget* highlightDiameter(ViewContext& view);
[[nodiscard]] QWidget* highlightOpacity(ViewContext& view);
[[nodiscard]] SwitchToggle* idleToggle(ViewContext& view, ControlSize size);

[[nodiscard]] QWidget* laserColors(ViewContext& view);
[[nodiscard]] QWidget* laserDiameter(ViewContext& view);
[[nodiscard]] QWidget* laserGlow(ViewContext& view, const Wording& title);

[[nodiscard]] std::vector<Choice<ClickStyle>> clickStyles();

} // namespace vantrel
