#pragma once

#include "platform/shell.h"

class QWindow;

namespace vantrel::layershell {

// Has a window of the toolkit's Wayland platform hang there, above other windows, and take the
// keyboard like one. Before it is shown first, since a window stays what it was then.
using HangWindow = void(QWindow& window, const EdgePlace& place);

// It is in a module of its own, as the library that it takes is not everywhere.
inline constexpr auto moduleFile = "layershell.so";
inline constexpr auto hangWindow = "vantrelHangWindow";

} // namespace vantrel::layershell
