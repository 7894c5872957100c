#pragma once

#include "testdesk/child_process.h"

#include <filesystem>

namespace vantrel::screenshots {

// Below a folder for XDG_CONFIG_HOME: the same fonts wherever the pictures are taken, and colours
// for those programs that are started with darkDesktop().
void writeLook(const std::filesystem::path& configHome);

[[nodiscard]] desktop::Environment darkDesktop();

} // namespace vantrel::screenshots
