#include "ui/components/plate.h"

#include <QPainter>
#include <QVBoxLayout>

namespace vantrel {

Plate::Plate(const Chrome& chrome, QWidget* content) : chrome_(chrome) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void Plate::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawChrome(painter, palette(), rect(), chrome_);
}

} // namespace vantrel
