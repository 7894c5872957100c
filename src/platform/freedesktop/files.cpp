#include "platform/freedesktop/files.h"

#include "platform/freedesktop/unique_descriptor.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantrel {
namespace {

constexpr off_t longestFile = off_t{16} << 20;
constexpr std::chrono::seconds lockTimeout(5);
constexpr std::chrono::milliseconds lockInterval(10);
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

// Whether it came in time.
bool lock(int file) {
    const auto deadline = std::chrono::steady_clock::now() + lockTimeout;
    while (flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(lockInterval);
    }
    return true;
}

// Locked, so that two running writers never mix their bytes.
UniqueDescriptor openTemporary(int folder, const std::string& name) {
    // Nobody is overtaken so often, but some file systems give a file another number each time.
    constexpr int lastAttempt = 100;
    for (int attempt = 1;; ++attempt) {
        UniqueDescriptor file(openat(folder, name.c_str(),
                                     O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                                     S_IRUSR | S_IWUSR));
        struct stat status {};
        if (!file || !lock(file.get()) || fstat(file.get(), &status) != 0) {
            return {};
        }
        if (isNamed(folder, name, status) || attempt == lastAttempt) {
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

std::string freeNameBeside(int folder, const std::string& name) {
    std::string free = name + ".unusable";
    for (int number = 2; faccessat(folder, free.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
         ++number) {
        free = name + ".unusable-" + std::to_string(number);
    }
    return free;
}

// Whether the new file may take the place, which is free then or holds what may be replaced.
bool makeRoom(int folder, const std::string& name, Former former) {
    struct stat status {};
    if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT;
    }
    return S_ISREG(status.st_mode) &&
           (former == Former::replaced ||
            renameat(folder, name.c_str(), folder, freeNameBeside(folder, name).c_str()) == 0);
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

bool replaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode,
                 Former former) {
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
    if (!fill(temporary.get(), bytes, mode) || !makeRoom(folder.get(), name, former) ||
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
