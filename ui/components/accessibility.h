#pragma once

#include <QAccessible>

class QWidget;

namespace vantrel {

// Tells screen readers what a widget is that the toolkit has no role for.
void setAccessibleRole(QWidget* widget, QAccessible::Role role);
// For decoration, and for the faces of buttons that have a name themselves. Counts for everything
// inside the widget too.
void hideFromScreenReaders(QWidget* widget);

} // namespace vantrel
