#pragma once

#include "platform/shell.h"

#include <QCloseEvent>
#include <QWidget>

#include <functional>

namespace vantrel {

// Shows a window in front of all others and gives it the keyboard; one that the desktop would leave
// behind others comes to the screen anew. The desktop is asked for that as soon as the window is on
// the screen, since it knows of none before; the callback comes right before that.
void showActive(
    QWidget& window, Application& application, std::function<void()> shown = [] {});

// What a window does when it is to be closed: it hides in the next turn of the event loop, for Qt
// 6.4 takes a compositor's wish to close in the midst of painting, and would paint on a window that
// is gone.
void hideInsteadOfClosing(QWidget& window, QCloseEvent& event);

} // namespace vantrel
