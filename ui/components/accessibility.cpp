#include "ui/components/accessibility.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace vantrel {

namespace {

constexpr auto roleProperty = "vantrelAccessibleRole";

class Decoration final : public QAccessibleWidget {
public:
    explicit Decoration(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Graphic) {}

    [[nodiscard]] QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.invisible = true;
        return state;
    }
    [[nodiscard]] int childCount() const override { return 0; }
};

QAccessibleInterface* describe(const QString& /*className*/, QObject* object) {
    const auto role = object->property(roleProperty);
    auto* widget = qobject_cast<QWidget*>(object);
    if (!role.isValid() || widget == nullptr) {
        return nullptr;
    }
    const auto value = static_cast<QAccessible::Role>(role.toInt());
    if (value == QAccessible::NoRole) {
        return new Decoration(widget);
    }
    return new QAccessibleWidget(widget, value);
}

void mark(QWidget* widget, QAccessible::Role role) {
    static const bool installed = [] {
        QAccessible::installFactory(describe);
        return true;
    }();
    Q_UNUSED(installed)
    widget->setProperty(roleProperty, static_cast<int>(role));
}

} // namespace

void setAccessibleRole(QWidget* widget, QAccessible::Role role) {
    mark(widget, role);
}

void hideFromScreenReaders(QWidget* widget) {
    mark(widget, QAccessible::NoRole);
}

} // namespace vantrel
