#pragma once

#include <QGuiApplication>
#include <QScreen>

namespace vantrel {

// Whether the toolkit's windows are those of a compositor. These know neither where they are nor,
// beyond themselves, where the pointer is, and cannot take the keyboard.
[[nodiscard]] inline bool hasNativeWindows() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

// Of the bars that compositors show, and tell programs nothing of: the most that is usual, in
// points.
constexpr int barHeight = 48;

// What a window may take of a display.
[[nodiscard]] inline QRect availableAreaOf(const QScreen& screen) {
    constexpr QMargins bars(0, barHeight, 0, 0);
    const auto area = screen.availableGeometry();
    return hasNativeWindows() ? area.marginsRemoved(bars) : area;
}

} // namespace vantrel
