// Any bytes as a document: what is read is what is written again, and can be brought into bounds.

#include "preferences/preference_encoding.h"
#include "require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

using namespace vantrel;

namespace {

void requireBounds(const AppPreferences& preferences) {
    const auto within = [](double value, double low, double high) {
        require(low <= value && value <= high);
    };
    within(preferences.highlight.diameter, 24, 120);
    within(preferences.highlight.opacity, 0.1, 0.9);
    within(preferences.highlight.idleSeconds, 2, 10);
    within(preferences.laser.diameter, 6, 24);
    for (const auto& color : {preferences.highlight.color, preferences.laser.color}) {
        within(std::min({color.red, color.green, color.blue}), 0, 1);
        within(std::max({color.red, color.green, color.blue}), 0, 1);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto preferences = decodePreferences({reinterpret_cast<const char*>(data), size});
    if (preferences) {
        const auto document = encodePreferences(*preferences);
        require(document && decodePreferences(*document) == preferences);
        require(encodePreferences(*decodePreferences(*document)) == document);
        preferences->sanitize();
        requireBounds(*preferences);
    }
    return 0;
}
