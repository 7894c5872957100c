#include "ui/components/status_badge.h"

#include "ui/components/label.h"
#include "ui/components/pictogram.h"
#include "ui/components/stack.h"

#include <QPainter>
#include <QVBoxLayout>

namespace vantrel {

StatusBadge::StatusBadge(ViewContext& view, const Wording& title,
                         const std::function<bool()>& active) {
    auto* symbol = new Symbol("circle", 11);
    auto* text = label(view, title, {11, QFont::Medium});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(row(4, {symbol, text})->padded(9, 5));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    view.follow(this, [this, symbol, text, active] {
        active_ = active();
        const auto tone = active_ ? Tone::green : Tone::secondary;
        symbol->setName(active_ ? "checkmark.circle.fill" : "circle");
        symbol->setTone(tone);
        text->setTone(tone);
        update();
    });
}

void StatusBadge::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawChrome(painter, palette(), rect(),
               {.fill = active_ ? Paint{Tone::green, 0.1} : Paint{Tone::primary, 0.05},
                .radius = height() / 2.0});
}

} // namespace vantrel
