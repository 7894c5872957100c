#include "ui/components/value_slider.h"

#include "ui/components/label.h"
#include "ui/components/slider.h"
#include "ui/components/stack.h"

#include <cmath>

namespace vantrel {

long ValueScale::shown(double value) const {
    return std::lround(percent ? 100 * value : value);
}

QString ValueScale::text(double value) const {
    return QStringLiteral("%1 %2").arg(shown(value)).arg(Text::name(suffix)(true));
}

QWidget* valueSlider(ViewContext& view, const Wording& title, const Binding<double>& value,
                     const ValueScale& scale) {
    auto* slider = new Slider(scale, value.set);
    view.follow(slider, [slider, &view, title, value] {
        slider->setAccessibleName(view.say(title));
        slider->showValue(value.get());
    });
    const auto text = [value, scale](bool /*english*/) { return scale.text(value.get()); };
    return column(4, {row(8, {label(view, title, calloutText), spacer(),
                              label(view, text, calloutText.toned(Tone::secondary))}),
                      slider});
}

} // namespace vantrel
