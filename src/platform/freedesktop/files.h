#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace vantrel {

// The content of a regular file; nothing when there is none, it cannot be read, or it is longer
// than 16 MiB.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& path);

// What becomes of the former content: it goes, or stays beside the new one as "<name>.unusable", or
// "<name>.unusable-2" and so on where there is one already.
enum class Former : std::uint8_t { replaced, kept };

// Makes the bytes the content of the file, in one step and durably: a reader, or a machine that
// lost its power, finds either all of the former content or all of the new one. A symbolic link
// stays and what it points to is replaced. False when that is not possible, as where something
// other than a file stands or the user may not write to it; nothing is lost then, but what is to be
// kept may have been put aside already.
bool replaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode,
                 Former former = Former::replaced);

// Makes the folder and its parents where they are missing, open to nobody but the user. False when
// there is no folder afterwards.
bool makePrivateFolder(const std::filesystem::path& folder);

} // namespace vantrel
