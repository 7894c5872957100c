#pragma once

#include "platform/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

enum class ReleaseLink : std::uint8_t { privacy, terms, support };

// The outside link of that kind, from the property list "ReleaseConfiguration.plist" of the
// resources, as an encoded URL: https with a host, or for support also mailto with a recipient.
// Nothing when it is not configured or not usable.
[[nodiscard]] std::optional<std::string> releaseURL(const Bundle& bundle, ReleaseLink link);

// The same from the bytes of a property list.
[[nodiscard]] std::optional<std::string> releaseURL(std::string_view configuration,
                                                    ReleaseLink link);

} // namespace vantrel
