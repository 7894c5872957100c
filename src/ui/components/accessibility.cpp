#include "ui/components/accessibility.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QLabel>
#include <QVariant>
#include <QWidget>

#include <optional>

namespace vantrel {

namespace {

constexpr auto roleProperty = "vantrelAccessibleRole";

std::optional<QAccessible::Role> roleOf(const QObject& object) {
    const auto role = object.property(roleProperty);
    return role.isValid() ? std::optional(static_cast<QAccessible::Role>(role.toInt()))
                          : std::nullopt;
}

// Also of a button that chooses one of several things.
class Described final : public QAccessibleWidget {
public:
    explicit Described(QWidget* widget) : QAccessibleWidget(widget) {}

    [[nodiscard]] QAccessible::Role role() const override {
        return roleOf(*object()).value_or(QAccessible::NoRole);
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        const auto* label = qobject_cast<QLabel*>(widget());
        return label != nullptr && kind == QAccessible::Name ? label->text()
                                                             : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        if (const auto* choice = button()) {
            const bool isTab = role() == QAccessible::PageTab;
            state.selectable = isTab;
            state.selected = isTab && choice->isChecked();
            state.checkable = !isTab && choice->isCheckable();
            state.checked = !isTab && choice->isChecked();
        }
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override {
        auto names = QAccessibleWidget::actionNames();
        if (button() != nullptr && widget()->isEnabled()) {
            names.prepend(pressAction());
        }
        return names;
    }
    void doAction(const QString& name) override {
        if (auto* choice = button(); choice != nullptr && name == pressAction()) {
            choice->click();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    [[nodiscard]] QAbstractButton* button() const {
        return qobject_cast<QAbstractButton*>(widget());
    }
};

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
    const auto role = roleOf(*object);
    auto* widget = qobject_cast<QWidget*>(object);
    if (!role || widget == nullptr) {
        return nullptr;
    }
    if (*role == QAccessible::NoRole) {
        return new Decoration(widget);
    }
    return new Described(widget);
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

void nameForScreenReaders(ViewContext& view, QWidget* widget, const Wording& name) {
    view.follow(widget, [widget, &view, name] {
        if (const auto said = view.say(name); said != widget->accessibleName()) {
            widget->setAccessibleName(said);
        }
    });
}

void describeForScreenReaders(ViewContext& view, QWidget* widget, const Wording& description) {
    view.follow(widget, [widget, &view, description] {
        if (const auto said = view.say(description); said != widget->accessibleDescription()) {
            widget->setAccessibleDescription(said);
        }
    });
}

} // namespace vantrel
