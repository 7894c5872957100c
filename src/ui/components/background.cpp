#include "ui/components/background.h"

#include "ui/components/scroll_view.h"
#include "ui/components/style.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace vantrel {

VantrelBackground::VantrelBackground(QWidget* content) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
    tint();
}

void VantrelBackground::tint() {
    const auto tinted = vantrel::tint(palette());
    if (palette().color(QPalette::Highlight) != tinted.color(QPalette::Highlight)) {
        setPalette(tinted);
    }
}

void VantrelBackground::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        tint();
    }
    QWidget::changeEvent(event);
}

void VantrelBackground::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Close)) {
        window()->close();
        return;
    }
    for (auto* area : findChildren<QScrollArea*>()) {
        auto* scrolled = dynamic_cast<ScrollView*>(area);
        if (scrolled != nullptr && scrolled->isVisible()) {
            event->setAccepted(scrolled->scrollBy(static_cast<Qt::Key>(event->key())));
            return;
        }
    }
    QWidget::keyPressEvent(event);
}

void VantrelBackground::paintEvent(QPaintEvent* /*event*/) {
    const auto [from, to] = windowEnds(palette());
    QLinearGradient gradient(0, 0, width(), height());
    gradient.setColorAt(0, from);
    gradient.setColorAt(0.5, palette().color(QPalette::Active, QPalette::Window));
    gradient.setColorAt(1, to);
    QPainter(this).fillRect(rect(), gradient);
}

} // namespace vantrel
