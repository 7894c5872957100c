#include "freedesktop_support.h"

#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/files.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

mode_t modeOf(const path& file) {
    struct stat status {};
    stat(file.c_str(), &status);
    return status.st_mode & ACCESSPERMS;
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
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_THAT(namesIn(folder), ElementsAre(key));
}

TEST_F(UserDefaultsFiles, HoldBooleansAsText) {
    FileUserDefaults defaults(folder);
    EXPECT_FALSE(defaults.boolean("welcomeDismissed"));
    for (const bool value : {true, false}) {
        defaults.setBoolean("welcomeDismissed", value);
        defaults.flush();
        EXPECT_EQ(contentOf(folder / "welcomeDismissed"), value ? "true" : "false");
        EXPECT_EQ(FileUserDefaults(folder).boolean("welcomeDismissed"), value);
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
    for (const auto bad : {""sv, "."sv, ".."sv, "../secret"sv, "a/b"sv, "/etc/passwd"sv,
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
    FileUserDefaults defaults(folder);
    EXPECT_EQ(defaults.data(key), std::nullopt);
    EXPECT_EQ(defaults.data("loop"), std::nullopt);
    EXPECT_EQ(defaults.data("pipe"), std::nullopt);
    defaults.setData(key, "bytes");
    defaults.setData("loop", "bytes");
    defaults.flush();
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_THAT(namesIn(folder), ElementsAre(key, "loop", "pipe"));
}

TEST_F(UserDefaultsFiles, ComeBackAfterTheFolderHasVanished) {
    FileUserDefaults defaults(folder);
    defaults.setData(key, "first");
    defaults.flush();
    std::filesystem::remove_all(home / "config");
    defaults.setData(key, "second");
    defaults.flush();
    EXPECT_EQ(contentOf(file), "second");
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

TEST_F(UserDefaultsFiles, KeepTheFormerDocumentInAFolderThatCannotBeWritten) {
    save("former");
    std::filesystem::permissions(home.path(), std::filesystem::perms{0755});
    std::filesystem::permissions(home / "config", std::filesystem::perms{0755});
    std::filesystem::permissions(folder, std::filesystem::perms{0555});
    std::filesystem::permissions(file, std::filesystem::perms{0644});
    EXPECT_EQ(exitCodeOf([&] {
                  constexpr uid_t nobody = 65534;
                  if (geteuid() == 0 && seteuid(nobody) != 0) {
                      return 2;
                  }
                  FileUserDefaults defaults(folder);
                  const bool read = defaults.data(key) == "former";
                  defaults.setData(key, "new");
                  defaults.flush();
                  return read ? 0 : 1;
              }),
              0);
    EXPECT_EQ(contentOf(file), "former");
    EXPECT_THAT(namesIn(folder), ElementsAre(key));
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
}

TEST_F(UserDefaultsFiles, TakeOverWhatAKilledRunLeft) {
    putFile(folder / ("." + std::string(key) + ".new"), std::string(100, 'x'));
    save("short");
    EXPECT_EQ(contentOf(file), "short");
    EXPECT_THAT(namesIn(folder), ElementsAre(key));
}

TEST_F(UserDefaultsFiles, OnASlowDiskNeitherHoldUpTheCallerNorHideTheNewestValue) {
    save("old");
    // Whoever holds the lock of the temporary file is a writer that has not finished.
    const path temporary = folder / ("." + std::string(key) + ".new");
    const int slowDisk = open(temporary.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(slowDisk, LOCK_EX), 0);

    FileUserDefaults defaults(folder);
    for (const char* value : {"first", "second", "newest"}) {
        defaults.setData(key, value);
        EXPECT_EQ(defaults.data(key), value);
    }
    EXPECT_EQ(contentOf(file), "old");

    close(slowDisk);
    defaults.flush();
    EXPECT_EQ(contentOf(file), "newest");
}

TEST_F(UserDefaultsFiles, OfTwoProgramsAtOnceAreAlwaysTheWholeDocumentOfOne) {
    const std::string mine(50'000, 'm');
    const std::string theirs(20'000, 't');
    save(mine);
    const pid_t other = fork();
    if (other == 0) {
        for (int i = 0; i < 300; ++i) {
            replaceFile(file, theirs, 0600);
        }
        _exit(0);
    }
    while (waitpid(other, nullptr, WNOHANG) == 0) {
        EXPECT_TRUE(replaceFile(file, mine, 0600));
        const auto found = readFile(file);
        EXPECT_TRUE(found == mine || found == theirs) << found->size();
    }
    EXPECT_THAT(namesIn(folder), ElementsAre(key));
}

// Document number n, told from every other by its number and its length.
std::string documentNumber(std::uint64_t number) {
    return std::string(100 + number * 7919 % 20'000, 'x') + std::to_string(number);
}

// Saves one document after the other and says which ones are known to be on disk.
[[noreturn]] void saveForEver(const path& folder, std::uint64_t number,
                              std::atomic<std::uint64_t>& saved) {
    FileUserDefaults defaults(folder);
    while (true) {
        defaults.setData(key, documentNumber(++number));
        defaults.flush();
        saved = number;
    }
}

// VANTREL_KILLS asks for another number of rounds.
TEST_F(UserDefaultsFiles, KilledWhileSavingAreTheFormerDocumentOrTheNewOne) {
    const char* asked = std::getenv("VANTREL_KILLS");
    const int rounds = asked != nullptr ? std::atoi(asked) : 100;
    void* memory = mmap(nullptr, sizeof(std::atomic<std::uint64_t>), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto& saved = *new (memory) std::atomic<std::uint64_t>(0);
    std::minstd_rand random(1);
    save(documentNumber(0));
    int torn = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::uint64_t before = saved;
        const pid_t writer = fork();
        if (writer == 0) {
            saveForEver(folder, before, saved);
        }
        while (saved == before) {
            sched_yield();
        }
        usleep(static_cast<useconds_t>(random() % 3000));
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);

        const std::uint64_t known = saved;
        const std::string found = contentOf(file);
        ASSERT_TRUE(found == documentNumber(known) || found == documentNumber(known + 1))
            << "round " << round << ", document " << known << ", " << found.size() << " bytes";
        torn += namesIn(folder).size() > 1 ? 1 : 0;
        ASSERT_LE(namesIn(folder).size(), 2U) << "leftovers pile up";
        saved = found == documentNumber(known) ? known : known + 1;
    }
    EXPECT_GT(torn, 0) << "no round was killed in the middle of a save";
    munmap(memory, sizeof(std::atomic<std::uint64_t>));
}

} // namespace
} // namespace vantrel
