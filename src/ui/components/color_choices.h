#pragma once

#include "ui/components/choice_button.h"

#include <span>

namespace vantrel {

enum class Palette : unsigned char { highlight, laser };

[[nodiscard]] std::span<const EffectColor> colorsOf(Palette palette);
// Of all six preset colours, whichever palette they are offered in.
[[nodiscard]] Text colorName(const EffectColor& color);

// Swatches of a palette, and a well for any other colour.
class ColorChoices : public ChoiceRow {
public:
    ColorChoices(ViewContext& view, const Binding<EffectColor>& color, Palette palette);

    // Whether the colour is none of the palette's.
    [[nodiscard]] bool isCustom() const;

private:
    Binding<EffectColor> color_;
    Palette palette_;
};

} // namespace vantrel
