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
    const auto window = palette().color(QPalette::Window);
    QLinearGradient gradient(0, 0, width(), height());
    gradient.setColorAt(0, laidOver(window, QColor::fromRgbF(0.0F, 0.48F, 1.0F), 0.08));
    gradient.setColorAt(0.5, window);
    gradient.setColorAt(1, laidOver(window, QColor::fromRgbF(1.0F, 0.8F, 0.0F), 0.04));
    QPainter(this).fillRect(rect(), gradient);
}

} // namespace vantrel
