#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace vantrel {

// The content of a regular file; nothing when there is none or it is longer than 256 MiB.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& path);

// Makes the bytes the content of the file, in one step and durably: a reader, or a machine that
// lost its power, finds either all of the former content or all of the new one. A symbolic link
// stays and what it points to is replaced. False, and nothing changed, when that is not possible.
//
// The bytes come through the file ".<name>.new" in the same folder. A run that was killed may leave
// it behind; the next one takes it over.
bool replaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode);

// Makes the folder and its parents where they are missing, open to nobody but the user. False when
// there is no folder afterwards.
bool makePrivateFolder(const std::filesystem::path& folder);

} // namespace vantrel
