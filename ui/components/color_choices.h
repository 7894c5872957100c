#pragma once

#include "ui/components/view_context.h"

#include <span>

namespace vantrel {

enum class Palette : unsigned char { highlight, laser };

[[nodiscard]] std::span<const EffectColor> colorsOf(Palette palette);
// Of all six preset colours, whichever palette they are offered in.
[[nodiscard]] Text colorName(const EffectColor& color);
[[nodiscard]] bool isCustom(const EffectColor& color, Palette palette);

// Swatches of a palette, and a well for any other colour.
[[nodiscard]] QWidget* colorChoices(ViewContext& view, const Binding<EffectColor>& color,
                                    Palette palette);

} // namespace vantrel
