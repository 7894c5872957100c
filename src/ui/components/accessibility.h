#pragma once

#include "ui/components/view_context.h"

#include <QAccessible>

namespace vantrel {

// Tells screen readers what a widget is that the toolkit has no role for, or another one. Before
// the widget is given a text or a state, as the toolkit keeps what it took it for then.
void setAccessibleRole(QWidget* widget, QAccessible::Role role);
// For decoration, and for the faces of buttons that have a name themselves. Counts for everything
// inside the widget too.
void hideFromScreenReaders(QWidget* widget);
// Follow the language. Screen readers hear of it only when it changes.
void nameForScreenReaders(ViewContext& view, QWidget* widget, const Wording& name);
void describeForScreenReaders(ViewContext& view, QWidget* widget, const Wording& description);

} // namespace vantrel
