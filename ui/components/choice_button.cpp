#include "ui/components/choice_button.h"

#include "ui/components/accessibility.h"
#include "ui/components/buttons.h"
#include "ui/components/stack.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

namespace vantrel {

ChoiceButton::ChoiceButton(ViewContext& view, const ChoiceRole& role, const ChoiceLook& look,
                           QWidget* face)
    : look_(look) {
    setAutoExclusive(false);
    setAccessibleRole(this, QAccessible::RadioButton);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(face);
    face->setAttribute(Qt::WA_TransparentForMouseEvents);
    hideFromScreenReaders(face);
    connect(this, &QAbstractButton::clicked, this, role.choose);
    view.follow(this, [this, &view, role] {
        setAccessibleName(view.say(role.name));
        setChecked(role.isSelected());
    });
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
    if (isDown()) {
        drawChrome(painter, palette(), rect(),
                   {.fill = {Tone::primary, 0.08}, .radius = chrome.radius});
    }
    drawFocusRing(painter, *this, rect(), chrome.radius);
}

QWidget* choiceRow(ViewContext& view, int spacing, const Wording& name,
                   const std::vector<QWidget*>& choices) {
    auto* group = row(spacing, {});
    for (auto* choice : choices) {
        group->add(choice);
    }
    setAccessibleRole(group, QAccessible::Grouping);
    view.follow(group, [group, &view, name] { group->setAccessibleName(view.say(name)); });
    return group;
}

} // namespace vantrel
