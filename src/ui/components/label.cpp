#include "ui/components/label.h"

#include "ui/components/accessibility.h"
#include "ui/components/pictogram.h"
#include "ui/components/stack.h"

#include <QAccessible>
#include <QEvent>
#include <QTimer>

namespace vantrel {

Label::Label(ViewContext& view, const Wording& wording, const TextStyle& style) : style_(style) {
    if (style.size >= titleText.size) {
        setAccessibleRole(this, QAccessible::Heading);
    }
    setFont(style.font());
    setTextFormat(Qt::PlainText);
    setForegroundRole(QPalette::WindowText); // also on a button
    tint();
    view.follow(this, [this, &view, wording] {
        if (const QString said = view.say(wording); said != text()) {
            heights_.clear();
            setText(said);
            announce();
        }
    });
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

// Once all that follows the same change has done so: the label may be hidden by it.
Label* Label::announced() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    announcement_ = new QTimer(this);
    announcement_->setSingleShot(true);
    connect(announcement_, &QTimer::timeout, this, [this] {
        if (isVisible() && !text().isEmpty()) {
            QAccessibleAnnouncementEvent event(this, text());
            QAccessible::updateAccessibility(&event);
        }
    });
#endif
    return this;
}

void Label::announce() const {
    if (announcement_ != nullptr) {
        announcement_->start(0);
    }
}

QWidget* Label::beside(std::string_view symbol, Tone symbolTone) {
    return row(6, {new Symbol(symbol, style_.size, symbolTone), this}, Alignment::leading);
}

void Label::showEvent(QShowEvent* event) {
    QLabel::showEvent(event);
    announce();
}

// Fonts for Chinese leave much room above and below what they draw.
QSize Label::ofOneLine(QSize hint) const {
    return wordWrap() ? hint : hint.boundedTo({QWIDGETSIZE_MAX, fontMetrics().height()});
}

QSize Label::sizeHint() const {
    return ofOneLine(QLabel::sizeHint());
}

QSize Label::minimumSizeHint() const {
    return ofOneLine(QLabel::minimumSizeHint());
}

int Label::heightForWidth(int width) const {
    constexpr qsizetype mostHeights = 16;
    if (heights_.size() >= mostHeights) {
        heights_.clear();
    }
    auto known = heights_.find(width);
    if (known == heights_.end()) {
        known = heights_.insert(width, QLabel::heightForWidth(width));
    }
    return *known;
}

void Label::changeEvent(QEvent* event) {
    heights_.clear(); // a font or a style
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
    return paragraph(view, wording, style)->beside(symbol, symbolTone);
}

} // namespace vantrel
