#include "platform/freedesktop/autostart_login_item.h"

#include "platform/freedesktop/desktop_entry.h"
#include "platform/freedesktop/files.h"
#include "platform/freedesktop/xdg_directories.h"

#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace vantrel {
namespace {

constexpr std::string_view fileName = "vantrel.desktop";
constexpr std::string_view hidden = "Hidden";
// The mark that unregistering leaves, and what else it changed.
constexpr std::string_view unregistered = "X-Vantrel-Unregistered";
constexpr std::string_view byHiding = "true";
constexpr std::string_view asItWas = "switched-off-before";

// A key by which some desktops switch an entry off.
struct EnabledFlag {
    std::string_view key;
    std::array<std::string_view, 4> desktops;
};
constexpr std::array enabledFlags{
    EnabledFlag{"X-GNOME-Autostart-enabled", {"GNOME", "Unity", "Pantheon", "X-Cinnamon"}},
    EnabledFlag{"X-MATE-Autostart-enabled", {"MATE"}}};
constexpr mode_t readableByAll = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

std::vector<std::filesystem::path> below(std::vector<std::filesystem::path> directories,
                                         const char* folder) {
    for (auto& directory : directories) {
        directory = directory / folder / fileName;
    }
    return directories;
}

// The user's, then the system's.
std::vector<std::filesystem::path> autostartEntries() {
    return below(configDirectories(), "autostart");
}

std::filesystem::path userEntry() {
    return autostartEntries().front();
}

bool isPresent(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

// The file that a session goes by; the first one hides those after it, whatever it holds.
std::optional<std::filesystem::path> effectiveEntry() {
    const auto paths = autostartEntries();
    const auto found = std::ranges::find_if(paths, isPresent);
    return found != paths.end() ? std::optional(*found) : std::nullopt;
}

bool systemHasEntry() {
    const auto paths = autostartEntries();
    return std::ranges::any_of(paths.begin() + 1, paths.end(), isPresent);
}

DesktopEntry readEntry(const std::filesystem::path& path) {
    return DesktopEntry(readFile(path).value_or(""));
}

std::filesystem::path findProgram(const std::string& name) {
    const auto found = QStandardPaths::findExecutable(QFile::decodeName(name.c_str()));
    return QFile::encodeName(found).toStdString();
}

// What an Exec line names that could be the program it starts: through env, nice or a line of
// shell, that is any of its words.
std::vector<std::string> programsOf(const DesktopEntry& entry) {
    std::vector<std::string> programs;
    const auto words = splitCommand(entry.string("Exec").value_or(""));
    for (auto word : words.value_or(std::vector<std::string>())) {
        programs.push_back(word);
        std::ranges::replace_if(
            word,
            [](char c) { return std::string_view(";&|()").find(c) != std::string_view::npos; },
            ' ');
        std::istringstream pieces(word);
        programs.insert(programs.end(), std::istream_iterator<std::string>(pieces), {});
    }
    return programs;
}

bool canBeTried(const DesktopEntry& entry) {
    const auto program = entry.string("TryExec");
    return !program || program->empty() || !findProgram(*program).empty();
}

// The desktop that runs, then those that it is like.
std::vector<std::string> currentDesktops() {
    std::vector<std::string> names;
    const char* current = std::getenv("XDG_CURRENT_DESKTOP");
    std::istringstream list(current != nullptr ? current : "");
    for (std::string name; std::getline(list, name, ':');) {
        names.push_back(name);
    }
    return names;
}

bool isForCurrentDesktop(const DesktopEntry& entry) {
    const auto only = entry.list("OnlyShowIn");
    const auto never = entry.list("NotShowIn");
    for (const auto& desktop : currentDesktops()) {
        if (std::ranges::find(only, desktop) != only.end()) {
            return true;
        }
        if (std::ranges::find(never, desktop) != never.end()) {
            return false;
        }
    }
    return only.empty();
}

bool isSwitchedOff(const DesktopEntry& entry) {
    return std::ranges::any_of(enabledFlags, [&](const EnabledFlag& flag) {
        return !entry.boolean(flag.key, true) &&
               std::ranges::any_of(currentDesktops(), [&](const std::string& desktop) {
                   return std::ranges::find(flag.desktops, desktop) != flag.desktops.end();
               });
    });
}

std::string newEntry(const std::string& program) {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Vantrel\n"
           "Exec=" +
           quoteCommand(program) +
           "\n"
           "TryExec=" +
           escapeString(program) +
           "\n"
           "Icon=vantrel\n"
           "Terminal=false\n";
}

bool write(const std::filesystem::path& path, const std::string& text) {
    struct stat status {};
    const bool present = stat(path.c_str(), &status) == 0;
    return makePrivateFolder(path.parent_path()) &&
           replaceFile(path, text, present ? status.st_mode & ACCESSPERMS : readableByAll);
}

} // namespace

AutostartLoginItem::AutostartLoginItem(std::filesystem::path executable)
    : executable_(std::move(executable)) {}

LoginItemStatus AutostartLoginItem::status() const {
    if (const auto path = effectiveEntry()) {
        return statusOf(readEntry(*path));
    }
    return installedProgram() ? LoginItemStatus::notRegistered : LoginItemStatus::notFound;
}

bool AutostartLoginItem::register_() {
    const auto program = installedProgram();
    if (!program) {
        return false;
    }
    if (isRegistered()) {
        return true;
    }
    const auto path = userEntry();
    if (!isPresent(path)) {
        return write(path, newEntry(*program)) && isRegistered();
    }
    DesktopEntry entry = readEntry(path);
    if (const auto mark = entry.string(unregistered)) {
        if (*mark == byHiding) {
            entry.remove(hidden);
        }
        entry.remove(unregistered);
    }
    if (statusOf(entry) == LoginItemStatus::notRegistered) {
        if (!mayTakeOver(entry)) {
            return false;
        }
        entry.set("Exec", quoteCommand(*program));
        entry.remove("TryExec");
    }
    return write(path, entry.text()) && isRegistered();
}

bool AutostartLoginItem::unregister() {
    const auto current = status();
    if (current != LoginItemStatus::enabled && current != LoginItemStatus::requiresApproval) {
        return true;
    }
    const auto path = userEntry();
    std::error_code error;
    const bool isOwn = readFile(path) == newEntry(installedProgram().value_or(executable_));
    if (isOwn && !systemHasEntry() && !std::filesystem::is_symlink(path, error)) {
        return std::filesystem::remove(path, error);
    }
    DesktopEntry entry = readEntry(*effectiveEntry());
    const bool hides = current == LoginItemStatus::enabled;
    if (hides) {
        entry.set(hidden, "true");
    }
    entry.set(unregistered, hides ? byHiding : asItWas);
    return write(path, entry.text());
}

// The path by which the installed desktop entry starts this executable.
std::optional<std::string> AutostartLoginItem::installedProgram() const {
    for (const auto& path : below(dataDirectories(), "applications")) {
        if (auto program = programStartedBy(readEntry(path))) {
            return program;
        }
    }
    return std::nullopt;
}

std::optional<std::string> AutostartLoginItem::programStartedBy(const DesktopEntry& entry) const {
    if (entry.string("Type") != "Application" || !canBeTried(entry)) {
        return std::nullopt;
    }
    for (const auto& name : programsOf(entry)) {
        std::error_code missing;
        const auto program = findProgram(name);
        if (std::filesystem::equivalent(program, executable_, missing)) {
            return program.string();
        }
    }
    return std::nullopt;
}

LoginItemStatus AutostartLoginItem::statusOf(const DesktopEntry& entry) const {
    const bool isHidden = entry.boolean(hidden, false);
    if (!isHidden && !programStartedBy(entry)) {
        return LoginItemStatus::notRegistered;
    }
    if (!isHidden && !isSwitchedOff(entry) && isForCurrentDesktop(entry)) {
        return LoginItemStatus::enabled;
    }
    return entry.string(unregistered) ? LoginItemStatus::notRegistered
                                      : LoginItemStatus::requiresApproval;
}

// Whether the entry meant this program where it was before, so that its command may be put right.
bool AutostartLoginItem::mayTakeOver(const DesktopEntry& entry) const {
    return entry.string("Type") == "Application" &&
           std::ranges::any_of(programsOf(entry), [this](const std::string& name) {
               return std::filesystem::path(name).filename() == executable_.filename();
           });
}

bool AutostartLoginItem::isRegistered() const {
    return status() == LoginItemStatus::enabled || status() == LoginItemStatus::requiresApproval;
}

} // namespace vantrel
