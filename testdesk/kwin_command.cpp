#include "testdesk/kwin_command.h"

#include "testdesk/temporary_folder.h"

#include <fstream>
#include <stdexcept>

namespace vantrel::desktop {
namespace {

// A copy has no capabilities, in the presence of which KWin takes no options from outside, and does
// not start where they cannot be had. Whether there is a KWin.
bool copyInto(const std::filesystem::path& folder) {
    for (const auto* program : {"/usr/bin/kwin_wayland", "/usr/local/bin/kwin_wayland"}) {
        if (std::filesystem::exists(program)) {
            std::filesystem::copy_file(program, folder / "kwin_wayland",
                                       std::filesystem::copy_options::skip_existing);
            return true;
        }
    }
    return false;
}

} // namespace

int kwinVersion() {
    const TemporaryFolder folder;
    const auto version =
        copyInto(folder.path()) ? versionToldBy(folder / "kwin_wayland") : std::string();
    return version.empty() ? 0 : std::stoi(version);
}

Environment kwinEnvironment(const std::filesystem::path& folder, const std::string& bus,
                            const std::filesystem::path& dataFolder) {
    auto environment = environmentIn(folder);
    environment["XDG_DATA_DIRS"] = dataFolder.string() + ":/usr/local/share:/usr/share";
    environment["XDG_SESSION_TYPE"] = "wayland";
    environment["XDG_CURRENT_DESKTOP"] = "KDE";
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus;
    environment["LIBGL_ALWAYS_SOFTWARE"] = "1";
    return environment;
}

Command kwinCommand(const std::filesystem::path& folder, const Environment& environment,
                    const KWinOptions& options) {
    makeRuntimeFolder(folder);
    if (!copyInto(folder)) {
        throw std::runtime_error("no kwin_wayland");
    }
    std::vector<std::string> arguments{"kwin_wayland_wrapper",
                                       "--width",
                                       std::to_string(options.size.width),
                                       "--height",
                                       std::to_string(options.size.height),
                                       "--output-count",
                                       std::to_string(options.outputs),
                                       "--scale",
                                       std::to_string(options.scale)};
    if (!options.locks) {
        arguments.emplace_back("--no-lockscreen");
    }
    if (options.screen.empty()) {
        arguments.emplace_back("--virtual");
    } else {
        arguments.insert(arguments.end(), {"--x11-display", options.screen});
    }
    if (options.xwayland) {
        const auto tell = folder / "tell-display";
        std::ofstream(tell) << "#!/bin/sh\necho \"$DISPLAY $XAUTHORITY.\" >" << folder / "display"
                            << "\n";
        std::filesystem::permissions(tell, std::filesystem::perms::owner_all);
        arguments.insert(arguments.end(), {"--xwayland", tell});
    }
    auto ofKWin = environment;
    ofKWin["PATH"] = folder.string() + ":" + ofKWin["PATH"];
    ofKWin["KWIN_WAYLAND_NO_PERMISSION_CHECKS"] = "1";
    ofKWin["KWIN_SCREENSHOT_NO_PERMISSION_CHECKS"] = "1";
    // Without it there are no effects where nothing but the processor draws.
    ofKWin["KWIN_EFFECTS_FORCE_ANIMATIONS"] = "1";
    if (options.locks) {
        ofKWin["DBUS_SYSTEM_BUS_ADDRESS"] = ofKWin["DBUS_SESSION_BUS_ADDRESS"];
    }
    ofKWin["QT_FORCE_STDERR_LOGGING"] = "1";
    ofKWin["QT_LOGGING_RULES"] = "kwin_scripting=true;js=true;qml=true";
    return {.arguments = arguments,
            .environment = ofKWin,
            .output = folder / "kwin.out",
            .errors = folder / "kwin.err",
            .signalOnParentDeath = SIGTERM};
}

Environment withXwaylandOf(const std::filesystem::path& folder, Environment environment) {
    const auto told = readFile(folder / "display");
    const auto space = told.find(' ');
    if (!told.ends_with(".\n") || space == std::string::npos) {
        return environment;
    }
    environment["DISPLAY"] = told.substr(0, space);
    const auto authority = told.substr(space + 1, told.size() - space - 3);
    if (!authority.empty()) {
        environment["XAUTHORITY"] = authority;
    }
    return environment;
}

} // namespace vantrel::desktop
