#include "platform/freedesktop/file_user_defaults.h"

#include "platform/freedesktop/files.h"

#include <chrono>
#include <csignal>
#include <sys/stat.h>
#include <utility>

namespace vantrel {
namespace {

constexpr std::chrono::seconds flushTimeout(4);
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

FileUserDefaults::FileUserDefaults(std::filesystem::path folder) : folder_(std::move(folder)) {
    writer_ = startWithoutSignals([this](const std::stop_token& stop) { writeUntil(stop); });
}

FileUserDefaults::~FileUserDefaults() = default;

std::optional<std::string> FileUserDefaults::data(std::string_view key) const {
    if (!isFileName(key)) {
        return std::nullopt;
    }
    if (const auto known = values_.find(key); known != values_.end() && known->second.set) {
        return known->second.bytes;
    }
    auto bytes = readFile(folder_ / key);
    if (bytes) {
        values_[std::string(key)] = {*bytes};
    }
    const std::lock_guard lock(mutex_);
    found_[std::string(key)] = {bytes};
    return bytes;
}

void FileUserDefaults::setData(std::string_view key, std::string_view bytes) {
    if (!isFileName(key)) {
        return;
    }
    const auto [known, isNew] = values_.try_emplace(std::string(key));
    const bool changes = isNew || known->second.bytes != bytes;
    known->second = {std::string(bytes), true};
    const std::lock_guard lock(mutex_);
    Write& write = pending_[std::string(key)];
    write = {std::string(bytes), write.changes || changes};
    changed_.notify_all();
}

bool FileUserDefaults::boolean(std::string_view key) const {
    return data(key) == "true";
}

void FileUserDefaults::setBoolean(std::string_view key, bool value) {
    setData(key, value ? "true" : "false");
}

void FileUserDefaults::countAs(std::string_view key, std::string_view bytes) {
    if (isFileName(key)) {
        values_[std::string(key)] = {std::string(bytes)};
        const std::lock_guard lock(mutex_);
        found_[std::string(key)].meaning = bytes;
    }
}

void FileUserDefaults::keepUnusable(std::string_view key) {
    const std::lock_guard lock(mutex_);
    if (const auto found = found_.find(key); found != found_.end()) {
        found->second.unusable = true;
    }
}

bool FileUserDefaults::flush() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, flushTimeout, [this] { return pending_.empty() && !writing_; });
}

void FileUserDefaults::writeUntil(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    while (changed_.wait(lock, stop, [this] { return !pending_.empty(); })) {
        const auto value = pending_.extract(pending_.begin());
        const Found found = found_[value.key()];
        writing_ = true;
        lock.unlock();
        const bool stored = store(folder_ / value.key(), value.mapped(), found);
        lock.lock();
        if (stored) {
            found_[value.key()] = {value.mapped().bytes};
        }
        writing_ = false;
        changed_.notify_all();
    }
}

// Whether the bytes are stored.
bool FileUserDefaults::store(const std::filesystem::path& path, const Write& write,
                             const Found& found) const {
    const auto now = readFile(path);
    if (now == write.bytes) {
        return true;
    }
    const bool isAsFound = now == found.bytes;
    // In other words, and perhaps with more that another version understands.
    const bool saysTheSame = now && !found.unusable && found.meaning == write.bytes;
    if (isAsFound ? saysTheSame : !write.changes) {
        return false;
    }
    std::error_code missing;
    const bool isUnreadable = !now && std::filesystem::is_regular_file(path, missing);
    const bool isWorthKeeping = isUnreadable || (found.unusable && isAsFound);
    return makePrivateFolder(folder_) &&
           replaceFile(path, write.bytes, readableByUser,
                       isWorthKeeping ? Former::kept : Former::replaced);
}

} // namespace vantrel
