#pragma once

#include <filesystem>
#include <vector>

namespace vantrel {

// The base directories of the desktop, from the environment or their defaults; relative paths in
// the environment do not count. The user's own comes first, then the system's in their order.
std::vector<std::filesystem::path> configDirectories();
std::vector<std::filesystem::path> dataDirectories();

} // namespace vantrel
