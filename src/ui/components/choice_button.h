#pragma once

#include "ui/components/accessibility.h"
#include "ui/components/stack.h"
#include "ui/components/style.h"

#include <QRadioButton>

#include <functional>

namespace vantrel {

// What a choice is: its name for screen readers, whether it is made now, and how to make it.
struct ChoiceRole {
    Wording name;
    std::function<bool()> isSelected;
    std::function<void()> choose;
    QAccessible::Role kind = QAccessible::RadioButton;
};

struct ChoiceLook {
    Chrome selected;
    Chrome plain;
};

// One of several things to choose from, with a face that is composed of parts. It shows whether it
// is chosen as the state has it; choosing it only changes the state. The keyboard stops at each.
class ChoiceButton : public QRadioButton {
public:
    ChoiceButton(ViewContext& view, const ChoiceRole& role, const ChoiceLook& look, QWidget* face);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& point) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void nextCheckState() override {}

private:
    ChoiceLook look_;
};

// Choices side by side, told to screen readers as one group. They share the width evenly unless
// they have widths of their own.
class ChoiceRow : public Stack {
public:
    ChoiceRow(ViewContext& view, int spacing, const Wording& name,
              QAccessible::Role role = QAccessible::Grouping);
};

} // namespace vantrel
