#pragma once

#include "platform/x11/connection.h"

#include <optional>
#include <string>
#include <string_view>

namespace vantrel::x11 {

// What the programs of a desktop are told in common: by the resource database, a text; by the
// settings block, which is binary and belongs to a window; and by the environment.

// What a line "name: value" of the database says.
[[nodiscard]] std::optional<std::string_view> resourceOf(std::string_view resources,
                                                         std::string_view name);
// Xft.dpi in the text of a resource database.
[[nodiscard]] std::optional<double> fontDpiOf(std::string_view resources);

// A setting of that type in the block; none when it is not there or the block is damaged.
[[nodiscard]] std::optional<int> integerSetting(std::string_view block, std::string_view name);
[[nodiscard]] std::optional<std::string_view> textSetting(std::string_view block,
                                                          std::string_view name);

// As they are now, one round trip each; empty, or no window, where there is none.
[[nodiscard]] std::string readResources(const Connection& connection);
[[nodiscard]] xcb_window_t settingsOwner(const Connection& connection);
[[nodiscard]] std::string readSettings(const Connection& connection, xcb_window_t owner);

} // namespace vantrel::x11
