#include "ui/components/label.h"

#include "ui/components/pictogram.h"
#include "ui/components/stack.h"

#include <QEvent>

namespace vantrel {

Label::Label(ViewContext& view, const Wording& wording, const TextStyle& style) : style_(style) {
    setFont(style.font());
    setTextFormat(Qt::PlainText);
    setForegroundRole(QPalette::WindowText); // also on a button
    tint();
    view.follow(this, [this, &view, wording] { setText(view.say(wording)); });
}

void Label::setTone(Tone tone) {
    style_.tone = tone;
    tint();
}

Label* Label::wrapping() {
    setWordWrap(true);
    auto policy = sizePolicy();
    policy.setHorizontalPolicy(QSizePolicy::Expanding);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    return this;
}

Label* Label::centered() {
    setAlignment(Qt::AlignCenter);
    return this;
}

void Label::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange) {
        tint();
    }
    QLabel::changeEvent(event);
}

// The tone is made of the parent's palette, since the label's own is what it changes.
void Label::tint() {
    const auto base = parentWidget() != nullptr ? parentWidget()->palette() : QPalette();
    const auto color = toneColor(style_.tone, base);
    if (palette().color(QPalette::WindowText) != color) {
        QPalette tinted;
        tinted.setColor(QPalette::WindowText, color);
        setPalette(tinted);
    }
}

Label* label(ViewContext& view, const Wording& wording, const TextStyle& style) {
    return new Label(view, wording, style);
}

Label* paragraph(ViewContext& view, const Wording& wording, const TextStyle& style) {
    return label(view, wording, style)->wrapping();
}

QWidget* symbolLabel(ViewContext& view, std::string_view symbol, Tone symbolTone,
                     const Wording& wording, const TextStyle& style) {
    auto* picture = new Symbol(symbol, style.size, symbolTone);
    return row(6, {picture, paragraph(view, wording, style)}, Alignment::leading);
}

} // namespace vantrel
