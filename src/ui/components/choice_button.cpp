#include "ui/components/choice_button.h"

#include "ui/components/accessibility.h"
#include "ui/components/buttons.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

namespace vantrel {

ChoiceButton::ChoiceButton(ViewContext& view, const ChoiceRole& role, const ChoiceLook& look,
                           QWidget* face)
    : look_(look) {
    setAccessibleRole(this, role.kind);
    setAutoExclusive(false);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(face);
    face->setAttribute(Qt::WA_TransparentForMouseEvents);
    hideFromScreenReaders(face);
    connect(this, &QAbstractButton::clicked, this, role.choose);
    nameForScreenReaders(view, this, role.name);
    view.follow(this, [this, role] { setChecked(role.isSelected()); });
}

QSize ChoiceButton::sizeHint() const {
    return layout()->sizeHint();
}

void ChoiceButton::keyPressEvent(QKeyEvent* event) {
    if (!clickOnEnter(*this, *event)) {
        QRadioButton::keyPressEvent(event);
    }
}

bool ChoiceButton::hitButton(const QPoint& point) const {
    return rect().contains(point);
}

void ChoiceButton::paintEvent(QPaintEvent* /*event*/) {
    const auto& chrome = isChecked() ? look_.selected : look_.plain;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawChrome(painter, palette(), rect(), chrome);
    if (isDown() || (underMouse() && !isChecked())) {
        drawChrome(painter, palette(), rect(),
                   {.fill = {Tone::primary, isDown() ? 0.08 : 0.04}, .radius = chrome.radius});
    }
    drawFocusRing(painter, *this, rect(), chrome.radius);
}

ChoiceRow::ChoiceRow(ViewContext& view, int spacing, const Wording& name, QAccessible::Role role)
    : Stack(Qt::Horizontal, spacing, {}, Alignment::center) {
    setAccessibleRole(this, role);
    nameForScreenReaders(view, this, name);
}

} // namespace vantrel
