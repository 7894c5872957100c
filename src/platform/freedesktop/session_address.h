#pragma once

#include <optional>
#include <string>

namespace vantrel {

// The local address at which the one program of this user takes commands in the Wayland session of
// the environment, which is that of one compositor. Nothing where the environment names none, or
// nobody takes connections there.
[[nodiscard]] std::optional<std::string> sessionAddress();

// Whether there is a program at such an address, which may be starting or ending.
[[nodiscard]] bool isTaken(const std::string& address);

} // namespace vantrel
