#pragma once

#include <QGuiApplication>

namespace vantrel {

// Whether the toolkit's windows are those of a compositor. These know neither where they are nor,
// beyond themselves, where the pointer is, and cannot take the keyboard.
[[nodiscard]] inline bool hasNativeWindows() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

} // namespace vantrel
