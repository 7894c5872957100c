#pragma once

#include <filesystem>
#include <vector>

namespace vantrel {

// The base directories of the desktop, from the environment or their defaults; relative paths in
// the environment do not count. The user's own comes first, then the system's in their order.
std::vector<std::filesystem::path> configDirectories();
std::vector<std::filesystem::path> dataDirectories();

// Lets the session's programs find what lies at that place in a folder of data: where they would
// find nothing or something else there, a copy is put into the user's own of the above, unless
// there is a link there. Whether they will.
bool offerToSession(const std::filesystem::path& dataFolder, const std::filesystem::path& place);

} // namespace vantrel
