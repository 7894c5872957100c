#include "tray_desktop.h"

#include "testdesk/wait.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <X11/keysym.h>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

constexpr int rowDistance = 20;
constexpr auto quietTime = 150ms;
constexpr auto clickDistance = 50ms;
constexpr auto pollInterval = 100us;
constexpr desktop::PixelPoint restingPlace{400, 400};

desktop::WindowQuery popupOf(const TrayProgram& program) {
    return {.program = program.name, .type = "_NET_WM_WINDOW_TYPE_UTILITY"};
}

desktop::WindowQuery windowOf(const TrayProgram& program) {
    return {.program = program.name, .width = 560, .height = 640};
}

// Two clicks in short order would be a double click, unless the pointer is seen to move on the icon
// between them: motions that come together count as their last.
void readyToClick(TrayDesktop& desktop, const TrayProgram& program) {
    desktop.bench.input.moveTo(restingPlace);
    std::this_thread::sleep_for(clickDistance);
    desktop.bench.input.moveTo({program.icon.x + 1, program.icon.y + 1});
    std::this_thread::sleep_for(clickDistance);
    desktop.bench.input.moveTo(desktop::centerOf(program.icon));
}

desktop::WindowState await(TrayDesktop& desktop, const desktop::WindowQuery& query) {
    auto& connection = desktop.bench.connection;
    const auto window = desktop::waitForWindow(connection, query);
    if (!window || !desktop::waitFor([&] { return desktop::hasFocus(connection, window->id); })) {
        throw std::runtime_error((query.type ? "the popup of " : "the window of ") + query.program +
                                 " did not appear or has no focus");
    }
    return *window;
}

void awaitEnd(TrayDesktop& desktop, const desktop::WindowQuery& query) {
    if (!desktop::waitUntilGone(desktop.bench.connection, query)) {
        throw std::runtime_error((query.type ? "the popup of " : "the window of ") + query.program +
                                 " does not close");
    }
    // What it covered is painted again.
    std::this_thread::sleep_for(quietTime);
}

bool showsSomething(const WatchedArea::Look& look) {
    return std::ranges::any_of(look, [&](auto pixel) { return pixel != look.front(); });
}

} // namespace

WatchedArea::Look WatchedArea::look() const {
    const auto width = static_cast<std::size_t>(area_.width);
    std::vector<xcb_get_image_cookie_t> cookies;
    for (int y = area_.y; y < area_.y + area_.height; y += rowDistance) {
        cookies.push_back(xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                        connection_.root(), static_cast<std::int16_t>(area_.x),
                                        static_cast<std::int16_t>(y),
                                        static_cast<std::uint16_t>(area_.width), 1, ~0U));
    }
    Look look(width * cookies.size());
    for (std::size_t row = 0; row < cookies.size(); ++row) {
        const auto reply =
            desktop::ownReply(xcb_get_image_reply(connection_.get(), cookies[row], nullptr));
        if (!reply) {
            throw std::runtime_error("cannot look at the screen");
        }
        std::memcpy(&look[row * width], xcb_get_image_data(reply.get()),
                    width * sizeof(Look::value_type));
    }
    return look;
}

Milliseconds WatchedArea::timeUntilPainted(const Look& before, Clock::time_point begin) const {
    Look latest = before;
    std::optional<Clock::time_point> change;
    while (!change || Clock::now() - *change < quietTime) {
        if (Clock::now() - begin > 10s) {
            throw std::runtime_error(change ? "the screen does not come to rest"
                                            : "nothing appeared on the screen");
        }
        if (Look now = look(); now != latest) {
            change = Clock::now();
            latest = std::move(now);
        }
        std::this_thread::sleep_for(pollInterval);
    }
    return *change - begin;
}

TrayProgram rehearse(TrayDesktop& desktop, const Contender& contender, bool marksPointer) {
    TrayProgram program{.contender = contender,
                        .name = std::filesystem::path(contender.command.front()).filename(),
                        .marksPointer = marksPointer};
    desktop.bench.input.moveTo(restingPlace);
    const desktop::ChildProcess process(
        {.arguments = contender.command,
         .environment = desktop.environment,
         .errors = desktop.bench.server.folder() / "contender.err"});
    const auto icon = desktop.tray.waitForIcon(program.name);
    if (!icon) {
        throw std::runtime_error("no icon of " + program.name + " in the tray");
    }
    program.icon = *icon;
    readyToClick(desktop, program);
    desktop.bench.input.click();
    program.popup = await(desktop, popupOf(program)).area;
    desktop.bench.input.typeChord({XK_Control_L, XK_comma});
    program.window = await(desktop, windowOf(program)).area;
    return program;
}

desktop::ChildProcess startInTray(TrayDesktop& desktop, const TrayProgram& program,
                                  Milliseconds* untilShown) {
    desktop.bench.input.moveTo(restingPlace);
    const auto& connection = desktop.bench.connection;
    const WatchedArea icon(connection, program.icon);
    // The one before has gone.
    if (!desktop::waitFor([&] {
            return !showsSomething(icon.look()) &&
                   desktop::pixelAt(connection, restingPlace) == desktop.bench.background;
        })) {
        throw std::runtime_error("something stays on the screen");
    }
    const auto begin = Clock::now();
    desktop::ChildProcess process({.arguments = program.contender.command,
                                   .environment = desktop.environment,
                                   .errors = desktop.bench.server.folder() / "contender.err"});
    const auto shown = [&] {
        return showsSomething(icon.look()) &&
               (!program.marksPointer ||
                desktop::pixelAt(connection, restingPlace) != desktop.bench.background);
    };
    while (!shown()) {
        if (Clock::now() - begin > 10s) {
            throw std::runtime_error(program.name + " does not show in the tray");
        }
        std::this_thread::sleep_for(pollInterval);
    }
    if (untilShown != nullptr) {
        *untilShown = Clock::now() - begin;
    }
    return process;
}

Milliseconds openPopup(TrayDesktop& desktop, const TrayProgram& program) {
    const WatchedArea area(desktop.bench.connection, program.popup);
    readyToClick(desktop, program);
    const auto before = area.look();
    const auto begin = Clock::now();
    desktop.bench.input.click();
    const Milliseconds time = area.timeUntilPainted(before, begin);
    static_cast<void>(await(desktop, popupOf(program)));
    return time;
}

void closePopup(TrayDesktop& desktop, const TrayProgram& program) {
    readyToClick(desktop, program);
    desktop.bench.input.click();
    awaitEnd(desktop, popupOf(program));
    desktop.bench.input.moveTo(restingPlace);
}

Milliseconds openWindow(TrayDesktop& desktop, const TrayProgram& program) {
    const WatchedArea area(desktop.bench.connection, program.window);
    desktop.bench.input.moveTo(restingPlace);
    const auto before = area.look();
    desktop.bench.input.pressKey(XK_Control_L);
    const auto begin = Clock::now();
    desktop.bench.input.pressKey(XK_comma);
    const Milliseconds time = area.timeUntilPainted(before, begin);
    desktop.bench.input.releaseKey(XK_comma);
    desktop.bench.input.releaseKey(XK_Control_L);
    static_cast<void>(await(desktop, windowOf(program)));
    return time;
}

void closeWindow(TrayDesktop& desktop, const TrayProgram& program) {
    const auto window = await(desktop, windowOf(program));
    desktop::requestClose(desktop.bench.connection, window);
    awaitEnd(desktop, windowOf(program));
}

bool bothOpen(const TrayDesktop& desktop, const TrayProgram& program) {
    const auto isOpen = [&](const desktop::WindowQuery& query) {
        return !desktop::visibleWindows(desktop.bench.connection, query).empty();
    };
    return isOpen(popupOf(program)) && isOpen(windowOf(program));
}

bool Usage::exceeds(const Usage& before) const {
    constexpr std::uint64_t tolerance = std::uint64_t{512} * 1024;
    return memory > before.memory + tolerance || resources != before.resources;
}

Usage usageOf(const TrayDesktop& desktop, const desktop::ChildProcess& process) {
    return {.memory = desktop::proportionalBytes(process.pid()),
            .resources = desktop::serverResources(desktop.bench.connection, process.pid())};
}

std::string describe(const Usage& before, const Usage& after) {
    std::ostringstream text;
    text << "memory " << before.memory / 1024 << " to " << after.memory / 1024 << " KiB, pixmaps "
         << before.resources.pixmaps << " to " << after.resources.pixmaps << ", windows "
         << before.resources.windows << " to " << after.resources.windows;
    return text.str();
}

} // namespace vantrel::bench
