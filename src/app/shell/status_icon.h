#pragma once

#include "preferences/preferences.h"

#include <QIcon>

#include <string>

namespace vantrel {

// The status item's picture in a mode. Whether the tray is light or dark is not known, so it is
// light with a dark edge.
[[nodiscard]] QIcon statusIcon(CursorMode mode);
// "Vantrel highlight"
[[nodiscard]] std::string statusDescription(CursorMode mode);

} // namespace vantrel
