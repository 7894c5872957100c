#pragma once

#include "app/state/app_state.h"

#include <QSize>

namespace vantrel {

// Of the contents of every window of the program, in points.
inline constexpr QSize minimumContentSize(520, 560);

// At first, in points.
constexpr QSize contentSizeOf(AppWindow window) {
    switch (window) {
    case AppWindow::settings:
        return {560, 640};
    case AppWindow::welcome:
        return {560, 580};
    case AppWindow::help:
        return {520, 540};
    }
    return {};
}

} // namespace vantrel
