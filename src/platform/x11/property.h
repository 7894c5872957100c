#pragma once

#include "platform/x11/connection.h"

#include <optional>
#include <string>
#include <vector>

// What properties of windows say now, one round trip each. One that is missing or of another format
// says nothing.

namespace vantrel::x11 {

[[nodiscard]] std::string bytesOf(const Connection& connection, xcb_window_t window, Atom property);
// Of its numbers, that many from there; fewer where it ends.
[[nodiscard]] std::vector<std::uint32_t> numbersOf(const Connection& connection,
                                                   xcb_window_t window, Atom property,
                                                   std::uint32_t first, std::uint32_t count);
// Its first number.
[[nodiscard]] std::optional<std::uint32_t> numberOf(const Connection& connection,
                                                    xcb_window_t window, Atom property);

} // namespace vantrel::x11
