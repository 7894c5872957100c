#pragma once

#include "app/app_state.h"

#include <QSize>
#include <QWidget>

#include <memory>
#include <string_view>

namespace vantrel {

// What the program's windows are called among themselves, and their sizes at first, in points.
struct WindowPlan {
    std::string_view key;
    QSize contentSize;
};
[[nodiscard]] WindowPlan planOf(AppWindow window);

// A window of the program around its content, in the middle of the screen that the pointer is on;
// not shown yet. It can be made as small as minimumContentSize.
[[nodiscard]] std::unique_ptr<QWidget> makeWindow(QSize contentSize, QWidget* content);

} // namespace vantrel
