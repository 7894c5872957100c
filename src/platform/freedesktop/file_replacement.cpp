#include "platform/freedesktop/files.h"

#include "platform/freedesktop/unique_descriptor.h"

#include <QFile>
#include <QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantrel {
namespace {

// A chain of links to its end, whether or not something stands there. Nothing where it has none.
std::optional<std::filesystem::path> followLinks(std::filesystem::path path) {
    constexpr int longestChain = 40;
    for (int links = 0; links < longestChain; ++links) {
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

QFile::Permissions permissionsOf(mode_t mode) {
    // Each digit of the mode, as the toolkit has it.
    return QFile::Permissions::fromInt(static_cast<QFile::Permissions::Int>(
        (mode & S_IRWXU) << 6U | (mode & S_IRWXG) << 1U | (mode & S_IRWXO)));
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

bool replaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode,
                 Former former) {
    const auto target = followLinks(path);
    if (!target) {
        return false;
    }
    const UniqueDescriptor folder = openFolder(target->parent_path());
    QSaveFile file(QFile::decodeName(target->c_str()));
    const auto length = static_cast<qint64>(bytes.size());
    if (!folder || !makeRoom(folder.get(), target->filename(), former) ||
        !file.open(QIODevice::WriteOnly) || file.write(bytes.data(), length) != length ||
        !file.setPermissions(permissionsOf(mode)) || !file.commit()) {
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
