#pragma once

#include "platform/user_defaults.h"

#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace vantrel {

// User defaults as one file for each key, named after it and holding exactly its bytes (a boolean:
// the text "true" or "false"), in a folder of the user's own. A user may put a symbolic link there:
// it stays, and what it points to is written.
//
// A disk can take longer over a save than a frame lasts, and nothing that is drawn may wait for it.
// So a value that is set is remembered, handed to one writer thread and at once visible to every
// later read; of the values that come for a key while the disk is busy only the newest is written.
// All operations are called from one thread; the writer touches nothing but the values handed to
// it.
class FileUserDefaults final : public UserDefaults {
public:
    // "vantrel" below $XDG_CONFIG_HOME or ~/.config.
    static std::filesystem::path userFolder();

    // The folder need not exist; it is made when a value is written.
    explicit FileUserDefaults(std::filesystem::path folder = userFolder());
    // What was set is on disk afterwards, as far as the disk takes it.
    ~FileUserDefaults() override;
    FileUserDefaults(const FileUserDefaults&) = delete;
    FileUserDefaults& operator=(const FileUserDefaults&) = delete;

    // A key that is no plain file name (empty, with a slash, beginning with a dot) holds nothing.
    [[nodiscard]] std::optional<std::string> data(std::string_view key) const override;
    void setData(std::string_view key, std::string_view bytes) override;
    [[nodiscard]] bool boolean(std::string_view key) const override;
    void setBoolean(std::string_view key, bool value) override;

    // Waits until everything that was set is on disk, or known not to get there.
    void flush();

private:
    using Values = std::map<std::string, std::string, std::less<>>;

    void writeUntil(const std::stop_token& stop);

    std::filesystem::path folder_;
    Values set_; // by this run

    std::mutex mutex_; // for what follows
    std::condition_variable_any changed_;
    Values pending_;
    bool writing_ = false;

    std::jthread writer_;
};

} // namespace vantrel
