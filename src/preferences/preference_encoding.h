#pragma once

#include "preferences/preferences.h"

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// Larger documents are refused unread; those that are written here stay under a kilobyte.
inline constexpr std::size_t maximumDocumentSize = 1 << 20;

// One JSON object in UTF-8, without blanks, its keys in the order of the fields. A double keeps its
// exact value. Nothing when one is infinite or not a number.
[[nodiscard]] std::optional<std::string> encodePreferences(const AppPreferences& preferences);

// All or nothing: nothing when a key is missing or holds a value of another type. Unknown keys are
// ignored, and of equal keys the last one counts. Numbers come as they are, out of bounds or not.
[[nodiscard]] std::optional<AppPreferences> decodePreferences(std::string_view document);

} // namespace vantrel
