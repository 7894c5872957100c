#include "support/freedesktop_support.h"

#include "platform/freedesktop/file_user_defaults.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {
std::atomic<bool> diskIsSlow = false;
} // namespace

// In place of the C library's: the disk of these tests.
extern "C" [[gnu::visibility("default")]] int fdatasync(int file) {
    while (diskIsSlow) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return fsync(file);
}

namespace vantrel {
namespace {

using std::filesystem::path;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view key = "Vantrel.preferences.v1";

std::vector<std::string> namesIn(const path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::ranges::sort(names);
    return names;
}

// Runs the body in a process of its own, whose rights and limits it may change.
template <typename Body>
int exitCodeOf(Body body) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class UserDefaultsFiles : public testing::Test {
protected:
    void save(std::string_view bytes) { FileUserDefaults(folder).setData(key, bytes); }

    TemporaryFolder home;
    path folder = home / "config/vantrel";
    path file = folder / key;
};

TEST_F(UserDefaultsFiles, HoldExactlyTheBytesForNobodyButTheUser) {
    const std::string bytes("{\"a\":\"\xE2\x8C\x83\"}\0\r\n", 14);
    save(bytes);
    EXPECT_EQ(contentOf(file), bytes);
    EXPECT_EQ(FileUserDefaults(folder).data(key), bytes);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0600});
    EXPECT_THAT(namesIn(folder), ElementsAre(key));
}

TEST_F(UserDefaultsFiles, HoldBooleansAsText) {
    FileUserDefaults defaults(folder);
    for (const bool value : {true, false}) {
        defaults.setBoolean("seen", value);
        defaults.flush();
        EXPECT_EQ(contentOf(folder / "seen"), value ? "true" : "false");
        EXPECT_EQ(FileUserDefaults(folder).boolean("seen"), value);
    }
    putFile(folder / "other", "truest");
    EXPECT_FALSE(defaults.boolean("other"));
}

TEST_F(UserDefaultsFiles, AreFoundWhereTheEnvironmentSays) {
    const ScopedVariable homeFolder("HOME", home.path());
    {
        const ScopedVariable config("XDG_CONFIG_HOME", home / "elsewhere");
        EXPECT_EQ(FileUserDefaults::userFolder(), home / "elsewhere/vantrel");
    }
    for (const char* unusable : {"relative/folder", ""}) {
        const ScopedVariable config("XDG_CONFIG_HOME", unusable);
        EXPECT_EQ(FileUserDefaults::userFolder(), home / ".config/vantrel") << unusable;
    }
}

TEST_F(UserDefaultsFiles, RefuseKeysThatLeaveTheFolder) {
    putFile(home / "config/secret", "secret");
    std::filesystem::create_directories(folder);
    FileUserDefaults defaults(folder);
    using namespace std::string_view_literals;
    const std::string absolute = home / "config/secret";
    for (const auto bad : {""sv, "."sv, ".."sv, "../secret"sv, "a/b"sv, std::string_view(absolute),
                           ".hidden"sv, "nul\0byte"sv}) {
        defaults.setData(bad, "overwritten");
        EXPECT_EQ(defaults.data(bad), std::nullopt) << bad;
    }
    defaults.flush();
    EXPECT_EQ(contentOf(home / "config/secret"), "secret");
    EXPECT_THAT(namesIn(folder), IsEmpty());
}

TEST_F(UserDefaultsFiles, AreWrittenThroughTheLinksOfTheUser) {
    putFile(home / "dotfiles/real", "old");
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink("../../dotfiles/link", file);
    std::filesystem::create_symlink("real", home / "dotfiles/link");
    save("new");
    EXPECT_EQ(contentOf(home / "dotfiles/real"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_TRUE(std::filesystem::is_symlink(home / "dotfiles/link"));

    std::filesystem::remove(home / "dotfiles/real");
    save("newer");
    EXPECT_EQ(contentOf(home / "dotfiles/real"), "newer");
    EXPECT_THAT(namesIn(home / "dotfiles"), ElementsAre("link", "real"));
}

TEST_F(UserDefaultsFiles, SurviveWhatStandsInTheirPlace) {
    std::filesystem::create_directories(file);
    std::filesystem::create_symlink("loop", folder / "loop");
    mkfifo((folder / "pipe").c_str(), 0600);
    std::filesystem::create_symlink("pipe", folder / "link");
    FileUserDefaults defaults(folder);
    EXPECT_EQ(defaults.data(key), std::nullopt);
    EXPECT_EQ(defaults.data("loop"), std::nullopt);
    EXPECT_EQ(defaults.data("pipe"), std::nullopt);
    defaults.setData(key, "bytes");
    for (const char* other : {"loop", "link", "pipe"}) {
        defaults.setData(other, "bytes");
    }
    defaults.flush();
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_THAT(namesIn(folder), ElementsAre(key, "link", "loop", "pipe"));
}

TEST_F(UserDefaultsFiles, AreNotUndoneByAProgramThatChangedNothing) {
    putFile(file, "old");
    FileUserDefaults mine(folder);
    FileUserDefaults theirs(folder);
    for (auto* defaults : {&mine, &theirs}) {
        EXPECT_EQ(defaults->data(key), "old");
        EXPECT_EQ(defaults->data("absent"), std::nullopt);
        defaults->countAs("absent", "default");
    }
    const auto set = [](FileUserDefaults& defaults, std::string_view name, const char* bytes) {
        defaults.setData(name, bytes);
        defaults.flush();
    };
    set(theirs, key, "theirs");
    set(mine, key, "old");
    EXPECT_EQ(contentOf(file), "theirs");
    set(theirs, "absent", "theirs");
    set(mine, "absent", "default");
    EXPECT_EQ(contentOf(folder / "absent"), "theirs");
    set(mine, key, "mine");
    set(theirs, key, "theirs");
    EXPECT_EQ(contentOf(file), "mine") << "what one has changed";
    set(mine, "new", "default");
    EXPECT_EQ(contentOf(folder / "new"), "default");
}

TEST_F(UserDefaultsFiles, StayAsTheyAreWrittenUntilSomethingChanges) {
    const std::string byHand = "{ default, and more }";
    putFile(file, byHand);
    FileUserDefaults defaults(folder);
    EXPECT_EQ(defaults.data(key), byHand);
    defaults.countAs(key, "default");
    for (const auto& [next, stored] : {std::pair("default", byHand.c_str()), {"mine", "mine"}}) {
        defaults.setData(key, next);
        EXPECT_TRUE(defaults.flush());
        EXPECT_EQ(contentOf(file), stored);
    }
}

TEST_F(UserDefaultsFiles, AreKeptWhenTheyAreOfNoUse) {
    const std::string aside = std::string(key) + ".unusable";
    for (const std::string bytes : {"first", "second"}) {
        putFile(file, bytes);
        FileUserDefaults defaults(folder);
        EXPECT_EQ(defaults.data(key), bytes);
        defaults.keepUnusable(key);
        defaults.countAs(key, "default");
        for (const char* next : {"default", "changed"}) {
            defaults.setData(key, next);
            defaults.flush();
            EXPECT_EQ(contentOf(file), next);
        }
    }
    putFile(file, "third");
    FileUserDefaults defaults(folder);
    EXPECT_EQ(defaults.data(key), "third");
    defaults.keepUnusable(key);
    putFile(file, "usable, of another program");
    defaults.setData(key, "changed");
    defaults.flush();
    EXPECT_EQ(contentOf(folder / aside), "first");
    EXPECT_EQ(contentOf(folder / (aside + "-2")), "second");
    EXPECT_THAT(namesIn(folder), ElementsAre(key, aside, aside + "-2"));
}

TEST_F(UserDefaultsFiles, AreKeptWhenTheyCannotBeRead) {
    constexpr uid_t nobody = 65534;
    putFile(file, "secret");
    std::filesystem::permissions(file, std::filesystem::perms::none);
    const bool isRoot = geteuid() == 0;
    for (const auto& above : {home.path(), home / "config", folder}) {
        ASSERT_TRUE(!isRoot || chown(above.c_str(), nobody, nobody) == 0);
    }
    EXPECT_EQ(exitCodeOf([&] {
                  if (isRoot && seteuid(nobody) != 0) {
                      return 2;
                  }
                  FileUserDefaults defaults(folder);
                  const bool read = defaults.data(key).has_value();
                  defaults.setData(key, "new");
                  defaults.flush();
                  return read ? 1 : 0;
              }),
              0);
    EXPECT_EQ(contentOf(file), "new");
    const auto aside = folder / (std::string(key) + ".unusable");
    std::filesystem::permissions(aside, std::filesystem::perms::owner_read);
    EXPECT_EQ(contentOf(aside), "secret");
}

TEST_F(UserDefaultsFiles, KeepTheFormerDocumentOnAFullDisk) {
    save("former");
    const std::string large(1 << 20, 'x');
    EXPECT_EQ(exitCodeOf([&] {
                  signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{4096, 4096};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  FileUserDefaults defaults(folder);
                  defaults.setData(key, large);
                  defaults.flush();
                  return defaults.data(key) == large ? 0 : 1;
              }),
              0)
        << "the running program goes on with what was set";
    EXPECT_EQ(contentOf(file), "former");
    EXPECT_THAT(namesIn(folder), ElementsAre(key));
}

TEST_F(UserDefaultsFiles, OnASlowDiskNeitherHoldUpTheCallerNorHideTheNewestValue) {
    save("old");
    diskIsSlow = true;
    FileUserDefaults defaults(folder);
    for (const char* value : {"first", "second", "newest", "newest"}) {
        defaults.setData(key, value);
        EXPECT_EQ(defaults.data(key), value);
    }
    EXPECT_EQ(contentOf(file), "old");

    auto flushed = std::async([&defaults] { return defaults.flush(); });
    EXPECT_EQ(flushed.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_FALSE(flushed.get()) << "it does not wait for ever";
    diskIsSlow = false;
    EXPECT_TRUE(defaults.flush());
    EXPECT_EQ(contentOf(file), "newest");
}

} // namespace
} // namespace vantrel
