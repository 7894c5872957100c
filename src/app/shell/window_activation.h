#pragma once

#include "platform/shell.h"

#include <QWidget>

#include <functional>

namespace vantrel {

// Shows a window in front of all others and gives it the keyboard. The desktop is asked for that as
// soon as the window is on the screen, since it knows of none before; the callback comes right
// before that.
void showActive(
    QWidget& window, Application& application, std::function<void()> shown = [] {});

} // namespace vantrel
