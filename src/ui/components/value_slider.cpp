#include "ui/components/value_slider.h"

#include "ui/components/accessibility.h"
#include "ui/components/label.h"
#include "ui/components/slider.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

// In most fonts a 1 is narrower than other digits. Here all take the same room, so that nothing
// jumps while the value changes.
class NumberLabel final : public Label {
public:
    using Label::Label;

    [[nodiscard]] QSize sizeHint() const override {
        return {textWidth(), Label::sizeHint().height()};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        QRect cell = rect();
        for (const auto character : text()) {
            cell.setWidth(widthOf(character));
            painter.drawText(cell, Qt::AlignCenter | Qt::TextDontClip, character);
            cell.translate(cell.width(), 0);
        }
    }

private:
    [[nodiscard]] int widthOf(QChar character) const {
        const auto metrics = fontMetrics();
        if (!character.isDigit()) {
            return metrics.horizontalAdvance(character);
        }
        int widest = 0;
        for (char digit = '0'; digit <= '9'; ++digit) {
            widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
        }
        return widest;
    }
    [[nodiscard]] int textWidth() const {
        int width = 0;
        for (const auto character : text()) {
            width += widthOf(character);
        }
        return width;
    }
};

} // namespace

long ValueScale::shown(double value) const {
    return std::lround(percent ? 100 * value : value);
}

QString ValueScale::text(double value) const {
    return QStringLiteral("%1 %2").arg(shown(value)).arg(Text::name(suffix)(true));
}

ValueSlider::ValueSlider(ViewContext& view, const Wording& title, const Binding<double>& value,
                         const ValueScale& scale)
    : Stack(Qt::Vertical, 4, {}, Alignment::leading) {
    const auto text = [value, scale](bool /*english*/) { return scale.text(value.get()); };
    auto* slider = new Slider(scale, value.set);
    nameForScreenReaders(view, slider, title);
    view.follow(slider, [slider, value] { slider->showValue(value.get()); });
    add(row(8, {label(view, title, calloutText), spacer(),
                new NumberLabel(view, text, calloutText.toned(Tone::secondary))}));
    add(slider);
}

} // namespace vantrel
