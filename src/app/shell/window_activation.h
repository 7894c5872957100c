#pragma once

#include <QWidget>

#include <functional>

namespace vantrel {

// Shows a window in front of all others and gives it the keyboard. The desktop is asked for that as
// soon as the window is on the screen, since it knows of none before.
void showActive(QWidget& window, const std::function<void(WId)>& activate);

} // namespace vantrel
