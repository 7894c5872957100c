#include "ui/preference_controls.h"

#include "ui/components/color_choices.h"
#include "ui/components/value_slider.h"

namespace vantrel {

StatusBadge* modeBadge(ViewContext& view) {
    auto& state = view.state();
    return new StatusBadge(
        view,
        [&state](bool /*english*/) {
            return QString::fromStdString(state.title(state.mode().get()));
        },
        [&state] { return state.mode().get() != CursorMode::off; });
}

QWidget* highlightColors(ViewContext& view) {
    return new ColorChoices(view,
                            view.binding(&AppPreferences::highlight, &HighlightSettings::color),
                            Palette::highlight);
}

QWidget* highlightDiameter(ViewContext& view) {
    return new ValueSlider(view, Text{"Diameter", "直径"},
                           view.binding(&AppPreferences::highlight, &HighlightSettings::diameter),
                           {.range = highlightDiameterRange, .suffix = "pt"});
}

QWidget* highlightOpacity(ViewContext& view) {
    return new ValueSlider(view, Text{"Opacity", "不透明度"},
                           view.binding(&AppPreferences::highlight, &HighlightSettings::opacity),
                           {.range = highlightOpacityRange, .suffix = "%", .percent = true});
}

SwitchToggle* idleToggle(ViewContext& view, ControlSize size) {
    return new SwitchToggle(view, Text{"Hide when idle", "闲置时隐藏"},
                            view.binding(&AppPreferences::highlight, &HighlightSettings::idleHide),
                            size);
}

QWidget* laserColors(ViewContext& view) {
    return new ColorChoices(view, view.binding(&AppPreferences::laser, &LaserSettings::color),
                            Palette::laser);
}

QWidget* laserDiameter(ViewContext& view) {
    return new ValueSlider(view, Text{"Dot diameter", "光点直径"},
                           view.binding(&AppPreferences::laser, &LaserSettings::diameter),
                           {.range = laserDiameterRange, .suffix = "pt"});
}

QWidget* laserGlow(ViewContext& view, const Wording& title) {
    return segmentedPicker(view, title, view.binding(&AppPreferences::laser, &LaserSettings::glow),
                           {{GlowStrength::low, Text{"Low", "低"}},
                            {GlowStrength::medium, Text{"Medium", "中"}},
                            {GlowStrength::high, Text{"High", "高"}}});
}

std::vector<Choice<ClickStyle>> clickStyles() {
    return {{ClickStyle::none, Text{"None", "无"}},
            {ClickStyle::ripple, Text{"Ripple", "涟漪"}},
            {ClickStyle::pulse, Text{"Pulse", "脉冲"}}};
}

} // namespace vantrel
