#include "ui/components/background.h"

#include "ui/components/style.h"

#include <QPainter>
#include <QVBoxLayout>

namespace vantrel {

VantrelBackground::VantrelBackground(QWidget* content) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
}

void VantrelBackground::paintEvent(QPaintEvent* /*event*/) {
    QLinearGradient gradient(0, 0, width(), height());
    gradient.setColorAt(0, QColor::fromRgbF(0.0F, 0.48F, 1.0F, 0.08F));
    gradient.setColorAt(0.5, Qt::transparent);
    gradient.setColorAt(1, QColor::fromRgbF(1.0F, 0.8F, 0.0F, 0.04F));
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(rect(), gradient);
}

} // namespace vantrel
