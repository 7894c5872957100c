#include "platform/freedesktop/file_user_defaults.h"

#include "platform/freedesktop/files.h"
#include "platform/freedesktop/xdg_directories.h"

#include <csignal>
#include <sys/stat.h>
#include <utility>

namespace vantrel {
namespace {

constexpr mode_t readableByUser = S_IRUSR | S_IWUSR;

bool isFileName(std::string_view key) {
    return !key.empty() && key.front() != '.' &&
           key.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

// A signal is taken by any thread that does not block it; this one must leave them all to the main
// thread.
template <typename Body>
std::jthread startWithoutSignals(Body body) {
    sigset_t all;
    sigset_t former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);
    std::jthread thread(std::move(body));
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    return thread;
}

} // namespace

std::filesystem::path FileUserDefaults::userFolder() {
    return configDirectories().front() / "vantrel";
}

FileUserDefaults::FileUserDefaults(std::filesystem::path folder) : folder_(std::move(folder)) {
    writer_ = startWithoutSignals([this](const std::stop_token& stop) { writeUntil(stop); });
}

FileUserDefaults::~FileUserDefaults() = default;

std::optional<std::string> FileUserDefaults::data(std::string_view key) const {
    if (!isFileName(key)) {
        return std::nullopt;
    }
    if (const auto found = set_.find(key); found != set_.end()) {
        return found->second;
    }
    return readFile(folder_ / key);
}

void FileUserDefaults::setData(std::string_view key, std::string_view bytes) {
    if (!isFileName(key)) {
        return;
    }
    set_.insert_or_assign(std::string(key), bytes);
    const std::lock_guard lock(mutex_);
    pending_.insert_or_assign(std::string(key), bytes);
    changed_.notify_all();
}

bool FileUserDefaults::boolean(std::string_view key) const {
    return data(key) == "true";
}

void FileUserDefaults::setBoolean(std::string_view key, bool value) {
    setData(key, value ? "true" : "false");
}

void FileUserDefaults::flush() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return pending_.empty() && !writing_; });
}

void FileUserDefaults::writeUntil(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    while (changed_.wait(lock, stop, [this] { return !pending_.empty(); })) {
        const auto value = pending_.extract(pending_.begin());
        writing_ = true;
        lock.unlock();
        if (makePrivateFolder(folder_)) {
            replaceFile(folder_ / value.key(), value.mapped(), readableByUser);
        }
        lock.lock();
        writing_ = false;
        changed_.notify_all();
    }
}

} // namespace vantrel
