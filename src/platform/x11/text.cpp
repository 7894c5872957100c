#include "platform/x11/text.h"

#include "platform/text.h"

#include <charconv>

namespace vantrel::x11 {

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

std::optional<double> positiveNumber(std::string_view text) {
    double value = 0;
    text = trimmed(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !(value > 0)) {
        return std::nullopt;
    }
    return value;
}

} // namespace vantrel::x11
