#pragma once

#include "platform/freedesktop/xdg_directories.h"
#include "platform/session.h"

#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
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
// All operations are called from one thread.
//
// Several programs may share the folder. A value that this one leaves as it was is not written over
// what another one has stored since, nor over the same in other words. What the program cannot use,
// or not even read, is kept beside the value that replaces it.
class FileUserDefaults final : public UserDefaults {
public:
    // "vantrel" below $XDG_CONFIG_HOME or ~/.config.
    static std::filesystem::path userFolder() { return configDirectories().front() / "vantrel"; }

    // The folder need not exist; it is made when a value is written.
    explicit FileUserDefaults(std::filesystem::path folder = userFolder());
    // What was set is on disk afterwards, as far as the disk takes it. Waits for the disk without
    // an end.
    ~FileUserDefaults() override;
    FileUserDefaults(const FileUserDefaults&) = delete;
    FileUserDefaults& operator=(const FileUserDefaults&) = delete;

    // A key that is no plain file name (empty, with a slash, beginning with a dot) holds nothing.
    [[nodiscard]] std::optional<std::string> data(std::string_view key) const override;
    void setData(std::string_view key, std::string_view bytes) override;
    [[nodiscard]] bool boolean(std::string_view key) const override;
    void setBoolean(std::string_view key, bool value) override;

    void countAs(std::string_view key, std::string_view bytes) override;
    void keepUnusable(std::string_view key) override;

    // Waits until everything that was set is on disk, or known not to get there. False when it
    // still was not after four seconds.
    bool flush();

private:
    template <typename T>
    using ByKey = std::map<std::string, T, std::less<>>;

    // What this run goes by.
    struct Value {
        std::string bytes;
        bool set = false; // by this run, and not only read
    };
    struct Write {
        std::string bytes;
        bool changes = false;
    };
    // What was stored when it was last read or written.
    struct Found {
        std::optional<std::string> bytes;
        std::optional<std::string> meaning{}; // what it counts as
        bool unusable = false;
    };

    void writeUntil(const std::stop_token& stop);
    [[nodiscard]] bool store(const std::filesystem::path& path, const Write& write,
                             const Found& found) const;

    std::filesystem::path folder_;
    mutable ByKey<Value> values_;

    mutable std::mutex mutex_; // for what follows
    std::condition_variable_any changed_;
    mutable ByKey<Found> found_;
    ByKey<Write> pending_;
    bool writing_ = false;

    std::jthread writer_;
};

} // namespace vantrel
