#include "platform/freedesktop/autostart_login_item.h"

#include "platform/freedesktop/desktop_entry.h"
#include "platform/freedesktop/files.h"
#include "platform/freedesktop/xdg_directories.h"

#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace vantrel {
namespace {

constexpr std::string_view fileName = "vantrel.desktop";
constexpr std::string_view hidden = "Hidden";
constexpr std::string_view hiddenByUnregistering = "X-Vantrel-Unregistered";
constexpr std::array<std::string_view, 2> enabledFlags{"X-GNOME-Autostart-enabled",
                                                       "X-MATE-Autostart-enabled"};
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

// The program that an Exec line names, past an "env NAME=value" in front of it; empty for none.
std::string programOf(const DesktopEntry& entry) {
    const auto words = splitCommand(entry.string("Exec").value_or(""));
    if (!words || words->empty()) {
        return {};
    }
    auto word = words->begin();
    if (std::filesystem::path(*word).filename() == "env") {
        word = std::find_if(word + 1, words->end(), [](const std::string& argument) {
            return argument.find('=') == std::string::npos;
        });
    }
    return word != words->end() ? *word : std::string();
}

bool canBeTried(const DesktopEntry& entry) {
    const auto program = entry.string("TryExec");
    return !program || program->empty() || !findProgram(*program).empty();
}

bool isForCurrentDesktop(const DesktopEntry& entry) {
    const auto only = entry.list("OnlyShowIn");
    const auto never = entry.list("NotShowIn");
    const char* current = std::getenv("XDG_CURRENT_DESKTOP");
    std::istringstream desktops(current != nullptr ? current : "");
    for (std::string desktop; std::getline(desktops, desktop, ':');) {
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
    return std::ranges::any_of(enabledFlags,
                               [&](std::string_view flag) { return !entry.boolean(flag, true); });
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
    if (entry.boolean(hiddenByUnregistering, false)) {
        entry.remove(hidden);
        entry.remove(hiddenByUnregistering);
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
    if (status() != LoginItemStatus::enabled) {
        return true;
    }
    const auto path = userEntry();
    std::error_code error;
    const bool isOwn = readFile(path) == newEntry(installedProgram().value_or(executable_));
    if (isOwn && !systemHasEntry() && !std::filesystem::is_symlink(path, error)) {
        return std::filesystem::remove(path, error);
    }
    DesktopEntry entry = readEntry(*effectiveEntry());
    entry.set(hidden, "true");
    entry.set(hiddenByUnregistering, "true");
    return write(path, entry.text());
}

// The path by which the installed desktop entry starts this executable.
std::optional<std::string> AutostartLoginItem::installedProgram() const {
    for (const auto& path : below(dataDirectories(), "applications")) {
        if (const DesktopEntry entry = readEntry(path); starts(entry)) {
            return findProgram(programOf(entry)).string();
        }
    }
    return std::nullopt;
}

bool AutostartLoginItem::starts(const DesktopEntry& entry) const {
    std::error_code missing;
    return entry.string("Type") == "Application" && canBeTried(entry) &&
           std::filesystem::equivalent(findProgram(programOf(entry)), executable_, missing);
}

LoginItemStatus AutostartLoginItem::statusOf(const DesktopEntry& entry) const {
    if (entry.boolean(hidden, false)) {
        return entry.boolean(hiddenByUnregistering, false) ? LoginItemStatus::notRegistered
                                                           : LoginItemStatus::requiresApproval;
    }
    if (!starts(entry)) {
        return LoginItemStatus::notRegistered;
    }
    return isSwitchedOff(entry) || !isForCurrentDesktop(entry) ? LoginItemStatus::requiresApproval
                                                               : LoginItemStatus::enabled;
}

// Whether the entry meant this program where it was before, so that its command may be put right.
bool AutostartLoginItem::mayTakeOver(const DesktopEntry& entry) const {
    return entry.string("Type") == "Application" &&
           std::filesystem::path(programOf(entry)).filename() == executable_.filename();
}

bool AutostartLoginItem::isRegistered() const {
    return status() == LoginItemStatus::enabled || status() == LoginItemStatus::requiresApproval;
}

} // namespace vantrel
