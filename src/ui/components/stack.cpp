#include "ui/components/stack.h"

#include "ui/components/style.h"

#include <QBoxLayout>
#include <QCoreApplication>
#include <QPainter>

namespace vantrel {

namespace {

class Divider final : public QWidget {
public:
    Divider() { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(rect(), toneColor(Tone::primary, palette(), 0.12));
    }
};

class Spacer final : public QWidget {
public:
    void fill(Qt::Orientation direction) {
        const bool across = direction == Qt::Horizontal;
        setSizePolicy(across ? QSizePolicy::Expanding : QSizePolicy::Minimum,
                      across ? QSizePolicy::Minimum : QSizePolicy::Expanding);
    }
};

Qt::Alignment placement(const QWidget& part, Qt::Orientation direction, Alignment alignment) {
    if (direction == Qt::Horizontal) {
        return alignment == Alignment::leading ? Qt::AlignTop : Qt::Alignment();
    }
    if (part.sizePolicy().horizontalPolicy() != QSizePolicy::Fixed) {
        return {};
    }
    return alignment == Alignment::leading ? Qt::AlignLeft : Qt::AlignHCenter;
}

} // namespace

Stack::Stack(Qt::Orientation direction, int spacing, std::initializer_list<QWidget*> parts,
             Alignment alignment)
    : direction_(direction), alignment_(alignment) {
    auto* layout = new QBoxLayout(
        direction == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    for (auto* part : parts) {
        add(part);
    }
}

void Stack::add(QWidget* part) {
    if (part == nullptr) {
        return;
    }
    if (auto* room = dynamic_cast<Spacer*>(part)) {
        room->fill(direction_);
    }
    static_cast<QBoxLayout*>(layout())->addWidget(part, 0,
                                                  placement(*part, direction_, alignment_));
}

Stack* Stack::padded(const QMargins& margins) {
    layout()->setContentsMargins(margins);
    return this;
}

Stack* column(int spacing, std::initializer_list<QWidget*> parts, Alignment alignment) {
    return new Stack(Qt::Vertical, spacing, parts, alignment);
}

Stack* row(int spacing, std::initializer_list<QWidget*> parts, Alignment alignment) {
    return new Stack(Qt::Horizontal, spacing, parts, alignment);
}

QWidget* spacer() {
    return new Spacer;
}

QWidget* divider() {
    return new Divider;
}

QWidget* hugging(QWidget* part) {
    auto policy = part->sizePolicy();
    policy.setHorizontalPolicy(QSizePolicy::Fixed);
    part->setSizePolicy(policy);
    return part;
}

void settleLayout(QWidget& part) {
    for (auto* child : part.children()) {
        if (auto* widget = qobject_cast<QWidget*>(child);
            widget != nullptr && !widget->isWindow() && !widget->isHidden()) {
            settleLayout(*widget);
        }
    }
    if (part.layout() != nullptr) {
        part.layout()->activate();
    } else {
        QCoreApplication::sendPostedEvents(&part, QEvent::LayoutRequest);
    }
}

} // namespace vantrel
