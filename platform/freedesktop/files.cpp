#include "platform/freedesktop/files.h"

#include "platform/freedesktop/unique_descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantrel {
namespace {

constexpr off_t longestFile = off_t{256} << 20;
constexpr int longestLinkChain = 40;

std::optional<std::filesystem::path> followLinks(std::filesystem::path path) {
    for (int links = 0; links < longestLinkChain; ++links) {
        std::error_code notALink;
        const auto target = std::filesystem::read_symlink(path, notALink);
        if (notALink) {
            return path;
        }
        path = path.parent_path() / target;
    }
    return std::nullopt;
}

UniqueDescriptor openFolder(const std::filesystem::path& folder) {
    const auto& name = folder.empty() ? std::filesystem::path(".") : folder;
    return UniqueDescriptor(open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// Whether the name still stands for the open file. Not so when another writer has moved it to its
// place in the meantime.
bool isNamed(int folder, const std::string& name, const struct stat& file) {
    struct stat named {};
    return fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           named.st_dev == file.st_dev && named.st_ino == file.st_ino;
}

bool isOwn(const struct stat& file) {
    return S_ISREG(file.st_mode) && file.st_uid == geteuid() && file.st_nlink == 1;
}

// Locked, so that two running writers never mix their bytes.
UniqueDescriptor openTemporary(int folder, const std::string& name) {
    while (true) {
        UniqueDescriptor file(openat(folder, name.c_str(),
                                     O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                                     S_IRUSR | S_IWUSR));
        if (!file) {
            return {};
        }
        while (flock(file.get(), LOCK_EX) != 0 && errno == EINTR) {
        }
        struct stat status {};
        if (fstat(file.get(), &status) != 0) {
            return {};
        }
        if (isNamed(folder, name, status)) {
            return isOwn(status) ? std::move(file) : UniqueDescriptor();
        }
    }
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

bool fill(int file, std::string_view bytes, mode_t mode) {
    return ftruncate(file, 0) == 0 && fchmod(file, mode) == 0 && writeAll(file, bytes) &&
           fsync(file) == 0;
}

} // namespace

std::optional<std::string> readFile(const std::filesystem::path& path) {
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

bool replaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode) {
    const auto target = followLinks(path);
    if (!target) {
        return false;
    }
    const UniqueDescriptor folder = openFolder(target->parent_path());
    const std::string name = target->filename();
    const std::string temporaryName = "." + name + ".new";
    const UniqueDescriptor temporary =
        folder ? openTemporary(folder.get(), temporaryName) : UniqueDescriptor();
    if (!temporary) {
        return false;
    }
    if (!fill(temporary.get(), bytes, mode) ||
        renameat(folder.get(), temporaryName.c_str(), folder.get(), name.c_str()) != 0) {
        unlinkat(folder.get(), temporaryName.c_str(), 0);
        return false;
    }
    fsync(folder.get());
    return true;
}

bool makePrivateFolder(const std::filesystem::path& folder) {
    std::error_code missing;
    if (std::filesystem::is_directory(folder, missing)) {
        return true;
    }
    const auto parent = folder.parent_path();
    if (parent == folder || !makePrivateFolder(parent) || mkdir(folder.c_str(), S_IRWXU) != 0) {
        return std::filesystem::is_directory(folder, missing);
    }
    if (const UniqueDescriptor above = openFolder(parent)) {
        fsync(above.get());
    }
    return true;
}

} // namespace vantrel
