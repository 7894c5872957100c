#include "ui/components/mode_choices.h"

#include "ui/components/label.h"
#include "ui/components/pictogram.h"

namespace vantrel {

namespace {

constexpr ChoiceLook look{
    .selected = {.fill = {Tone::accent, 1}, .outline = {Tone::accent, 1}},
    .plain = {.fill = {Tone::primary, 0.045}, .outline = {Tone::primary, 0.06}},
};

Wording modeTitle(ViewContext& view, CursorMode mode) {
    if (mode == CursorMode::laser) {
        return Text{"Laser Pointer", "激光笔"};
    }
    return [&view, mode](bool /*english*/) {
        return QString::fromStdString(view.state().title(mode));
    };
}

QWidget* modeChoice(ViewContext& view, CursorMode mode, Density density) {
    const bool compact = density == Density::compact;
    const auto title = modeTitle(view, mode);
    const auto isSelected = [&view, mode] { return view.state().mode().get() == mode; };
    auto* symbol = new Symbol(modeSymbol(mode), compact ? 18 : 20);
    auto* text = label(view, title, {compact ? 11 : 12, QFont::Medium})->centered();
    auto* face = column(6, {spacer(), symbol, text, spacer()}, Alignment::center);
    auto* button = new ChoiceButton(
        view, {title, isSelected, [&view, mode] { view.state().setMode(mode); }}, look, face);
    button->setFixedHeight(compact ? 58 : 64);
    view.follow(button, [symbol, text, isSelected] {
        const auto tone = isSelected() ? Tone::onAccent : Tone::primary;
        symbol->setTone(tone);
        text->setTone(tone);
    });
    return button;
}

} // namespace

std::string_view modeSymbol(CursorMode mode) {
    switch (mode) {
    case CursorMode::off:
        return "nosign";
    case CursorMode::highlight:
        return "cursorarrow.rays";
    case CursorMode::laser:
        return "scope";
    }
    return {};
}

ModeChoices::ModeChoices(ViewContext& view, Density density)
    : ChoiceRow(view, 8, Text{"Mode", "模式"}) {
    for (const auto mode : allCases<CursorMode>()) {
        add(modeChoice(view, mode, density));
    }
}

} // namespace vantrel
