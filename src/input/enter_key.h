#pragma once

#include <QKeyEvent>

namespace vantrel {

// Of the letters or of the number pad.
[[nodiscard]] inline bool isEnter(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace vantrel
