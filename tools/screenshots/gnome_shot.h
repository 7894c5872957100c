#pragma once

#include <filesystem>

namespace vantrel::screenshots {

// A session of GNOME Shell with an open menu, and the pointer on it.
void takeGnomePicture(const std::filesystem::path& program, const std::filesystem::path& folder);

} // namespace vantrel::screenshots
