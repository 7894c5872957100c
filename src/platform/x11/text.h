#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace vantrel::x11 {

[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);
// A number above zero, with nothing but blanks around it.
[[nodiscard]] std::optional<double> positiveNumber(std::string_view text);

} // namespace vantrel::x11
