#pragma once

#include <filesystem>

namespace vantrel::screenshots {

// Leaves pictures of a display in the folder, one for each scale from 1 to 2, language, light and
// dark style: "gnome-1.5-chinese-dark.png" with settings and panel, "…-welcome.png" with the
// welcome. They end with the first session that does not come up.
void takeGnomeWindows(const std::filesystem::path& program, const std::filesystem::path& folder);
void takeKdeWindows(const std::filesystem::path& program, const std::filesystem::path& folder);

} // namespace vantrel::screenshots
