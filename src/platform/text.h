#pragma once

#include <algorithm>
#include <string_view>

namespace vantrel {

inline constexpr std::string_view blanks = " \t\r\n\v\f";

// Without the blanks at its ends.
[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

} // namespace vantrel
