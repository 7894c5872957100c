#include "ui/components/color_choices.h"

#include "overlay/effect.h"
#include "ui/components/color_well.h"
#include "ui/components/pictogram.h"

#include <QPainter>

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

constexpr std::array<Text, 6> presetNames{{{"Yellow", "黄色"},
                                           {"Green", "绿色"},
                                           {"Blue", "蓝色"},
                                           {"Red", "红色"},
                                           {"Purple", "紫色"},
                                           {"White", "白色"}}};
constexpr Text customName{"Custom color", "自定义颜色"};

constexpr double discSide = 26;
constexpr double ringSide = discSide + 2 * 3; // to the middle of the line around it

// A disc of the colour, which is ticked and circled when it is the one in use.
class Swatch final : public ChoiceButton {
public:
    Swatch(ViewContext& view, const Binding<EffectColor>& bound, const EffectColor& color)
        : ChoiceButton(view,
                       {colorName(color), [bound, color] { return bound.get() == color; },
                        [bound, color] { bound.set(color); }},
                       {}, new QWidget),
          color_(toQColor(color)) {
        setFixedSize(34, 34);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPointF middle = QRectF(rect()).center();
        painter.setPen(QPen(toneColor(Tone::primary, palette(), 0.12), 1));
        painter.setBrush(color_);
        painter.drawEllipse(middle, discSide / 2, discSide / 2);
        if (isChecked()) {
            paintSelection(painter, middle);
        } else if (underMouse()) {
            paintRing(painter, middle, toneColor(Tone::primary, palette(), 0.25));
        }
        drawFocusRing(painter, *this, rect(), width() / 2.0);
    }

private:
    void paintSelection(QPainter& painter, QPointF middle) {
        const int side = pictogramSide(10);
        const QColor tick = color_ == QColor(Qt::white) ? Qt::black : Qt::white;
        painter.drawPixmap(
            middle - QPointF(side, side) / 2,
            pictogram("checkmark", side, tick, devicePixelRatio(), SymbolWeight::bold));
        paintRing(painter, middle, toneColor(Tone::accent, palette()));
    }
    static void paintRing(QPainter& painter, QPointF middle, const QColor& color) {
        painter.setPen(QPen(color, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(middle, ringSide / 2, ringSide / 2);
    }

    QColor color_;
};

} // namespace

std::span<const EffectColor> colorsOf(Palette palette) {
    if (palette == Palette::laser) {
        return EffectColor::laserPresets();
    }
    return EffectColor::presets();
}

Text colorName(const EffectColor& color) {
    const auto presets = EffectColor::presets();
    const auto found = std::ranges::find(presets, color);
    return found == presets.end() ? customName
                                  : presetNames[static_cast<std::size_t>(found - presets.begin())];
}

// Discs 8 apart, though each is as wide as the line around it.
ColorChoices::ColorChoices(ViewContext& view, const Binding<EffectColor>& color, Palette palette)
    : ChoiceRow(view, 6, Text{"Color", "颜色"}), color_(color), palette_(palette) {
    for (const auto& preset : colorsOf(palette)) {
        add(new Swatch(view, color, preset));
    }
    auto* well = new CustomColorWell(view, color, customName);
    view.follow(well, [this, well] { well->setChecked(isCustom()); });
    add(row(0, {well})->padded({1, 0, 0, 0}));
    hugging(this);
}

bool ColorChoices::isCustom() const {
    return std::ranges::count(colorsOf(palette_), color_.get()) == 0;
}

} // namespace vantrel
