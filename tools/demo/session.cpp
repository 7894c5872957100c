#include "session.h"

#include "interruption.h"
#include "pictures.h"
#include "testdesk/compositor.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/gnome_session.h"
#include "testdesk/kwin_command.h"
#include "testdesk/private_bus.h"
#include "testdesk/wayland_session.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace vantrel::demo {
namespace {

// openbox, and picom for what is translucent.
struct XSession final : Session {
    explicit XSession(const desktop::PrivateServer& server)
        : windowManager(desktop::startWindowManager(server)),
          compositingManager(desktop::startCompositingManager(server)) {
        environment = server.environment();
        marks = "x11";
    }

    desktop::ChildProcess windowManager;
    desktop::ChildProcess compositingManager;
};

struct GnomeSession final : Session {
    GnomeSession(const desktop::PrivateServer& server, const std::filesystem::path& dataFolder)
        : shell({.monitors = {std::to_string(stageSize.width()) + "x" +
                              std::to_string(stageSize.height())},
                 .dataFolder = dataFolder,
                 .screen = server.display()}) {
        // Whichever the shell is for.
        for (const char* extension : {"marks43@vantrel.org", "marks@vantrel.org"}) {
            shell.switchExtension(QString::fromLatin1(extension), true);
        }
        environment = shell.environment();
        marks = "gnome-shell";
    }

    desktop::GnomeSession shell;
};

// Up to Plasma 5 it draws by QPainter on such a server, and then what is translucent adds up with
// what was there before.
void requireKWin() {
    constexpr int first = 6;
    if (const int version = desktop::kwinVersion(); version < first) {
        throw std::runtime_error((version == 0
                                      ? "there is no KWin"
                                      : "the KWin of Plasma " + std::to_string(version) +
                                            " does not draw marks aright on a private X server") +
                                 "; take that of Plasma 6, in Debian 13:\n"
                                 "    sudo scripts/in-debian 13 scripts/run --demo --session kde");
    }
}

// KWin without the rest of Plasma.
struct KdeSession final : Session {
    KdeSession(const desktop::PrivateServer& server, const std::filesystem::path& dataFolder)
        : bus(folder / "session_bus") {
        environment = desktop::kwinEnvironment(folder.path(), bus.address(), dataFolder);
        kwin.emplace(desktop::kwinCommand(folder.path(), environment,
                                          {.size = {stageSize.width(), stageSize.height()},
                                           .xwayland = true,
                                           .screen = server.display()}));
        environment["WAYLAND_DISPLAY"] = "wayland-0";
        expect("KWin", [&] {
            if (!kwin->running()) {
                throw std::runtime_error("KWin did not start: " +
                                         desktop::readFile(folder / "kwin.err"));
            }
            environment = desktop::withXwaylandOf(folder.path(), environment);
            return environment.contains("DISPLAY");
        });
        marks = "kwin";
    }

    desktop::TemporaryFolder folder;
    desktop::PrivateBus bus;
    std::optional<desktop::ChildProcess> kwin;
};

struct SwaySession final : Session {
    explicit SwaySession(const desktop::PrivateServer& server)
        : sway(server, "default_border none\n") {
        environment = server.environment();
        environment["XDG_SESSION_TYPE"] = "wayland";
        environment["XDG_CURRENT_DESKTOP"] = "sway";
        environment["WAYLAND_DISPLAY"] = sway.socket();
        environment["DISPLAY"] = sway.display();
        environment["QT_QPA_PLATFORM"] = "";
        marks = "layer-shell";
        placesWindows = false;
        hasShortcuts = false;
        tellsOfClicks = false;
    }

    desktop::WaylandSession sway;
};

void requireSway() {
    if (desktop::followsPointers(desktop::Compositor::sway)) {
        return;
    }
    const auto version = desktop::versionOf(desktop::Compositor::sway);
    throw std::runtime_error(
        (version.empty()
             ? "there is no sway"
             : "sway " + version + " tells no program where the pointer is, as 1.11 and later do") +
        "; take that of Debian unstable:\n"
        "    sudo scripts/test-sway scripts/run --demo --session sway");
}

} // namespace

std::optional<SessionKind> sessionNamed(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, SessionKind>, 4> all{
        {{"x11", SessionKind::x11},
         {"gnome", SessionKind::gnome},
         {"kde", SessionKind::kde},
         {"sway", SessionKind::sway}}};
    for (const auto& [known, kind] : all) {
        if (known == name) {
            return kind;
        }
    }
    return std::nullopt;
}

namespace {

std::unique_ptr<Session> start(SessionKind kind, const desktop::PrivateServer& server,
                               const std::filesystem::path& dataFolder) {
    switch (kind) {
    case SessionKind::gnome:
        return std::make_unique<GnomeSession>(server, dataFolder);
    case SessionKind::kde:
        requireKWin();
        return std::make_unique<KdeSession>(server, dataFolder);
    case SessionKind::sway:
        requireSway();
        return std::make_unique<SwaySession>(server);
    case SessionKind::x11:
        break;
    }
    return std::make_unique<XSession>(server);
}

} // namespace

std::unique_ptr<Session> startSession(SessionKind kind, const desktop::PrivateServer& server,
                                      const std::filesystem::path& dataFolder) {
    auto session = start(kind, server, dataFolder);
    // For the windows of this process.
    if (const auto authority = session->environment.find("XAUTHORITY");
        authority != session->environment.end()) {
        qputenv("XAUTHORITY", QByteArray::fromStdString(authority->second));
    }
    return session;
}

} // namespace vantrel::demo
