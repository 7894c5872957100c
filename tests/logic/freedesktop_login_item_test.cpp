#include "support/freedesktop_support.h"

#include "platform/freedesktop/autostart_login_item.h"
#include "platform/freedesktop/desktop_entry.h"

#include <gmock/gmock.h>

#include <array>
#include <sys/stat.h>

namespace vantrel {

void PrintTo(LoginItemStatus status, std::ostream* out) {
    constexpr std::array names{"notRegistered", "enabled", "requiresApproval", "notFound"};
    *out << names.at(static_cast<std::size_t>(status));
}

namespace {

using std::filesystem::path;
using enum LoginItemStatus;

// A home in which the program is installed; "@" in a desktop entry stands for its path.
class Autostart : public testing::Test {
protected:
    Autostart() {
        putProgram(program, "#!/bin/sh\n");
        putProgram(home / "bin/other", "#!/bin/sh\n");
        install("Exec=vantrel\n");
    }

    void install(const std::string& exec) {
        putFile(home / "data/applications/vantrel.desktop",
                withProgram("[Desktop Entry]\nType=Application\nName=Vantrel\n" + exec));
    }
    std::string withProgram(std::string text) const {
        for (auto at = text.find('@'); at != std::string::npos; at = text.find('@')) {
            text.replace(at, 1, program.string());
        }
        return text;
    }
    LoginItemStatus statusWith(const std::string& entry) {
        putFile(userFile, withProgram(entry));
        return item.status();
    }

    TemporaryFolder home;
    path program = home / "bin/vantrel";
    path userFile = home / "config/autostart/vantrel.desktop";
    path systemFile = home / "etc/autostart/vantrel.desktop";
    ScopedVariable config{"XDG_CONFIG_HOME", home / "config"};
    ScopedVariable configDirs{"XDG_CONFIG_DIRS", home / "etc"};
    ScopedVariable data{"XDG_DATA_HOME", home / "data"};
    ScopedVariable dataDirs{"XDG_DATA_DIRS", home / "usr"};
    ScopedVariable folders{"PATH", (home / "bin").string() + ":/usr/bin"};
    ScopedVariable desktop{"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"};
    AutostartLoginItem item{program};
};

struct EntryCase {
    const char* text;
    LoginItemStatus expected;
};

TEST_F(Autostart, IsReadAsDesktopsReadIt) {
    const std::string start = "[Desktop Entry]\nType=Application\nExec=@\n";
    const EntryCase cases[] = {
        {"", enabled},
        {"Hidden=false\n", enabled},
        {"Hidden=true\n", requiresApproval},
        {"Hidden = true \n", requiresApproval},
        {"Hidden=1", requiresApproval},
        {"Hidden=true\nHidden=false\n", enabled},
        {"#Hidden=true\n", enabled},
        {"[Desktop Action x]\nHidden=true\nExec=other\n", enabled},
        {"Hidden[de]=true\nExec[de]=other\n", enabled},
        {"X-GNOME-Autostart-enabled=false\n", requiresApproval},
        {"X-MATE-Autostart-enabled=false\n", enabled},
        {"OnlyShowIn=KDE;LXQt;\n", requiresApproval},
        {"OnlyShowIn=KDE;GNOME;\n", enabled},
        {"NotShowIn=GNOME\n", requiresApproval},
        {"NotShowIn=GNOME;\nOnlyShowIn=ubuntu;\n", enabled},
        {"NotShowIn=KDE;\n", enabled},
        {"TryExec=vantrel\n", enabled},
        {"TryExec=/nonexistent\n", notRegistered},
        {"Type=Link\n", notRegistered},
        {"Exec=other\nX-GNOME-Autostart-enabled=false\n", notRegistered},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(statusWith(start + text), expected) << text;
    }
}

TEST_F(Autostart, IsReadRightHoweverItIsWritten) {
    const std::string start = "[Desktop Entry]\nType=Application\n";
    for (const std::string exec :
         {"@", "\"@\" \"a b\"", "'@'", "env A=1 B=\"2 3\" @", "/usr/bin/env -u A @", "nice @",
          "sh -c \"sleep 5;vantrel&\"", "vantrel"}) {
        EXPECT_EQ(statusWith(start + "Exec=" + exec + "\n"), enabled) << exec;
    }
    for (const std::string exec : {"sh -c \"sleep vantrels\"", "\"@", "", "env", "other"}) {
        EXPECT_EQ(statusWith(start + "Exec=" + exec + "\n"), notRegistered) << exec;
    }
    const EntryCase cases[] = {
        {"[Desktop Entry]\r\nType=Application\r\nExec=@\r\n", enabled},
        {"\xEF\xBB\xBF[Desktop Entry]\nType=Application\nExec=@", enabled},
        {"# mine\n\n  [Desktop Entry]  \n Type = Application\n\tExec\t=\t@ --quiet\t%U\n", enabled},
        {"[Other]\nExec=other\n[Desktop Entry]\nExec=@\nType=Application\n[Other]\nType=Link\n",
         enabled},
        {"[Desktop Entry]\nHidden=true", requiresApproval},
        {"[Desktop Entry\nType=Application\nExec=@\n", notRegistered},
        {"[Desktop Entry]\rType=Application\rExec=@\r", notRegistered},
        {"Type=Application\nExec=@\n", notRegistered},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(statusWith(text), expected) << text;
    }
}

TEST_F(Autostart, IsWrittenForAnInstalledProgramAndRemovedAgain) {
    EXPECT_TRUE(item.unregister());
    EXPECT_TRUE(item.register_());
    EXPECT_EQ(item.status(), enabled);
    EXPECT_EQ(DesktopEntry(contentOf(userFile)).string("Exec"), program.string());
    EXPECT_TRUE(item.register_());
    EXPECT_TRUE(item.unregister());
    EXPECT_FALSE(std::filesystem::exists(userFile));
    EXPECT_EQ(item.status(), notRegistered);
}

TEST_F(Autostart, IsRefusedToAProgramThatIsNotInstalled) {
    install("Exec=other\n");
    EXPECT_EQ(item.status(), notFound);
    EXPECT_FALSE(item.register_());
    EXPECT_FALSE(std::filesystem::exists(home / "config"));
    install("Exec=vantrel\n");
    std::filesystem::create_directory(home / ".local");
    std::filesystem::rename(home / "data", home / ".local/share");
    EXPECT_EQ(item.status(), notFound);
    const ScopedVariable homeFolder("HOME", home.path());
    const ScopedVariable usual("XDG_DATA_HOME", "");
    EXPECT_EQ(item.status(), notRegistered) << "where such entries usually are";
}

TEST_F(Autostart, NamesThePathThatAnUpgradeLeavesInPlace) {
    std::filesystem::create_directory(home / "opt-1.0");
    std::filesystem::rename(program, home / "opt-1.0/vantrel");
    std::filesystem::create_symlink("../opt-1.0/vantrel", program);
    AutostartLoginItem resolved(home / "opt-1.0/vantrel");
    EXPECT_TRUE(resolved.register_());
    EXPECT_EQ(DesktopEntry(contentOf(userFile)).string("Exec"), program.string());
    EXPECT_EQ(resolved.status(), enabled);
}

TEST_F(Autostart, StartsAProgramWithAnyName) {
    for (const char* name :
         {"a b", "per%cent", "q\"uote", "back\\slash", "dollar$`;&", "tab\t", "\xE4\xB8\xAD"}) {
        const path odd = home / name / "vantrel";
        putProgram(odd, "#!/bin/sh\n");
        install("Exec=" + quoteCommand(odd.string()) + "\n");
        AutostartLoginItem oddItem(odd);
        EXPECT_TRUE(oddItem.register_()) << name;
        EXPECT_EQ(oddItem.status(), enabled) << contentOf(userFile);
        EXPECT_TRUE(oddItem.unregister());
        EXPECT_FALSE(std::filesystem::exists(userFile)) << name;
    }
    EXPECT_EQ(quoteCommand("/a b/100%/$x\\y"), R"("/a b/100%%/\\$x\\\\y")");
}

TEST_F(Autostart, ThatIsSwitchedOffStaysAsItIs) {
    const std::string base = "[Desktop Entry]\r\nType=Application\nExec=@\n";
    for (const std::string off :
         {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n", "OnlyShowIn=KDE;\n"}) {
        ASSERT_EQ(statusWith(base + off), requiresApproval);
        EXPECT_TRUE(item.register_());
        EXPECT_TRUE(item.unregister());
        EXPECT_EQ(item.status(), notRegistered);
        EXPECT_TRUE(item.unregister());
        EXPECT_TRUE(item.register_());
        EXPECT_EQ(item.status(), requiresApproval);
        EXPECT_EQ(contentOf(userFile), withProgram(base + off));
    }
}

TEST_F(Autostart, ThatTheUserEditedIsHiddenAndComesBackUnchanged) {
    const std::string edited = withProgram("# keep\r\n[Desktop Entry]\r\nType=Application\r\n"
                                           "Name[zh_CN]=x\r\nExec=env A=1 @\r\n\r\n[Other]\r\nB=2");
    ASSERT_EQ(statusWith(edited), enabled);
    chmod(userFile.c_str(), 0640);
    EXPECT_TRUE(item.unregister());
    EXPECT_EQ(item.status(), notRegistered);
    EXPECT_THAT(contentOf(userFile), testing::HasSubstr("Exec=env A=1 "));
    EXPECT_THAT(contentOf(userFile), testing::HasSubstr("\r\nHidden=true\r\n"));
    EXPECT_TRUE(item.register_());
    EXPECT_EQ(item.status(), enabled);
    EXPECT_EQ(contentOf(userFile), edited);
    EXPECT_EQ(std::filesystem::status(userFile).permissions(), std::filesystem::perms{0640});
}

TEST_F(Autostart, OfTheSystemIsHiddenByAnEntryOfTheUser) {
    putFile(systemFile, withProgram("[Desktop Entry]\nType=Application\nExec=@\n"));
    EXPECT_EQ(item.status(), enabled);
    EXPECT_TRUE(item.unregister());
    EXPECT_EQ(item.status(), notRegistered);
    EXPECT_THAT(contentOf(userFile), testing::HasSubstr("Hidden=true"));
    EXPECT_TRUE(item.register_());
    EXPECT_EQ(item.status(), enabled);
    EXPECT_TRUE(item.unregister());
    EXPECT_EQ(item.status(), notRegistered);
    EXPECT_EQ(statusWith(""), notRegistered) << "it hides that of the system";
}

TEST_F(Autostart, FollowsAProgramThatHasMovedAndNoOther) {
    ASSERT_EQ(
        statusWith("[Desktop Entry]\nType=Application\nExec=/old/vantrel\nTryExec=/old/vantrel\n"
                   "X-Mine=1"),
        notRegistered);
    EXPECT_TRUE(item.register_());
    EXPECT_EQ(contentOf(userFile),
              withProgram("[Desktop Entry]\nType=Application\nExec=@\nX-Mine=1"));

    for (const std::string foreign :
         {"[Desktop Entry]\nType=Application\nExec=other\n", "not a desktop entry", ""}) {
        ASSERT_EQ(statusWith(foreign), notRegistered);
        EXPECT_FALSE(item.register_());
        EXPECT_TRUE(item.unregister());
        EXPECT_EQ(contentOf(userFile), foreign);
    }
}

TEST_F(Autostart, IsRefusedWhereItCannotBeWritten) {
    std::filesystem::create_directories(userFile);
    EXPECT_EQ(item.status(), notRegistered);
    EXPECT_FALSE(item.register_());
    std::filesystem::remove_all(home / "config");
    putFile(home / "config", "a file");
    EXPECT_FALSE(item.register_());
}

} // namespace
} // namespace vantrel
