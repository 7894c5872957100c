#include "platform/freedesktop/files.h"

#include "platform/freedesktop/unique_descriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// What commands need too, which do not load the toolkit. The rest is in file_replacement.cpp.

namespace vantrel {

std::optional<std::string> readFile(const std::filesystem::path& path) {
    constexpr off_t longestFile = off_t{16} << 20;
    // Not blocking, since a pipe may stand in its place.
    const UniqueDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > longestFile) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t count = read(file.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        length += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    bytes.resize(length);
    return bytes;
}

} // namespace vantrel
