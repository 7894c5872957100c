#include "ui/components/highlight_choices.h"

#include "ui/components/effect_preview.h"
#include "ui/components/label.h"

namespace vantrel {

namespace {

constexpr ChoiceLook look{
    .selected = {.fill = {Tone::accent, 0.06}, .outline = {Tone::accent, 1}, .lineWidth = 2},
    .plain = {.outline = {Tone::primary, 0.08}},
};

Text styleTitle(HighlightStyle style) {
    switch (style) {
    case HighlightStyle::filled:
        return {"Filled", "实心"};
    case HighlightStyle::ring:
        return {"Ring", "圆环"};
    case HighlightStyle::glow:
        return {"Glow", "柔光"};
    }
    return {};
}

EffectPreview* sample(ViewContext& view, HighlightStyle style, Density density) {
    const bool compact = density == Density::compact;
    return new EffectPreview(view, {.interactive = false,
                                    .height = compact ? 38 : 48,
                                    .variation = [style, compact](AppPreferences preferences) {
                                        preferences.highlight.style = style;
                                        preferences.highlight.diameter = compact ? 30 : 38;
                                        preferences.highlight.opacity = 0.8;
                                        return preferences;
                                    }});
}

QWidget* styleChoice(ViewContext& view, HighlightStyle style, Density density) {
    const auto binding = view.binding(&AppPreferences::highlight, &HighlightSettings::style);
    const Text title = styleTitle(style);
    auto* face = column(5, {sample(view, style, density),
                            label(view, title, {12, QFont::Medium})->centered()})
                     ->padded(6);
    return new ChoiceButton(view,
                            {title, [binding, style] { return binding.get() == style; },
                             [binding, style] { binding.set(style); }},
                            look, face);
}

} // namespace

HighlightChoices::HighlightChoices(ViewContext& view, Density density)
    : ChoiceRow(view, 8, Text{"Highlight style", "高亮样式"}) {
    for (const auto style : allCases<HighlightStyle>()) {
        add(styleChoice(view, style, density));
    }
}

} // namespace vantrel
