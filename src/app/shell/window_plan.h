#pragma once

#include "ui/window_size.h"

#include <QMargins>
#include <QRect>
#include <QSize>
#include <QWidget>

#include <memory>
#include <string_view>

namespace vantrel {

// What the program's windows are called among themselves.
[[nodiscard]] std::string_view keyOf(AppWindow window);

// Where a new window's content goes: so that, with its frame, it is in the middle of the available
// area and no larger than that.
[[nodiscard]] QRect windowPlacement(QSize contentSize, QMargins frame, const QRect& available);

// A window of the program around its content, placed on the screen that the pointer is on; not
// shown yet. It can be made as small as minimumContentSize, or smaller where the screen is.
[[nodiscard]] std::unique_ptr<QWidget> makeWindow(QSize contentSize, QWidget* content);
// Places a new window, which is on the screen by now, with the frame that it was given. One that
// the desktop has given another size stays where it is.
void placeWithFrame(QWidget& window, QSize contentSize);
// For all windows, unless they have one.
void provideWindowIcon();

} // namespace vantrel
