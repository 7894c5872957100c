#include "bench_desktop.h"

#include "testdesk/displays.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <cmath>
#include <filesystem>
#include <numbers>
#include <stdexcept>
#include <thread>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

constexpr int monitorWidth = 1920;
constexpr int monitorHeight = 1080;

// Pictures that were asked for together and are waited for once.
std::vector<std::uint32_t> pixelsAt(const desktop::XConnection& connection,
                                    const std::vector<desktop::PixelPoint>& places) {
    std::vector<xcb_get_image_cookie_t> cookies;
    cookies.reserve(places.size());
    for (const desktop::PixelPoint place : places) {
        cookies.push_back(xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                        connection.root(), static_cast<std::int16_t>(place.x),
                                        static_cast<std::int16_t>(place.y), 1, 1, ~0U));
    }
    std::vector<std::uint32_t> pixels;
    for (const auto cookie : cookies) {
        const auto reply =
            desktop::ownReply(xcb_get_image_reply(connection.get(), cookie, nullptr));
        if (!reply) {
            throw std::runtime_error("cannot look at the screen");
        }
        pixels.push_back(*reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get())) &
                         0xFFFFFF);
    }
    return pixels;
}

std::uint32_t settledBackground(const desktop::XConnection& connection) {
    // The compositing manager paints the whole screen once it is ready.
    std::uint32_t color = 0;
    desktop::waitFor([&] {
        color = desktop::pixelAt(connection, {50, 50});
        return color != 0;
    });
    return color;
}

} // namespace

BenchDesktop::BenchDesktop(int monitorCount)
    : server(desktop::PrivateServer::virtualScreen({monitorWidth * monitorCount, monitorHeight})),
      connection(server.display()),
      windowManager(desktop::startWindowManager(server)),
      compositingManager(desktop::startCompositingManager(server)),
      input(server.display()),
      background(settledBackground(connection)) {
    std::vector<desktop::PixelRect> monitors(static_cast<std::size_t>(monitorCount),
                                             {0, 0, monitorWidth, monitorHeight});
    for (int i = 0; desktop::PixelRect & monitor : monitors) {
        monitor.x = monitorWidth * i++;
    }
    desktop::setMonitors(connection, monitors);
    desktop::writePreferences(server.environment().at("XDG_CONFIG_HOME"),
                              desktop::preferencesShowing("highlight"));
}

std::filesystem::path storedDocument(const BenchDesktop& desktop) {
    return std::filesystem::path(desktop.server.environment().at("XDG_CONFIG_HOME")) / "vantrel" /
           "Vantrel.preferences.v1";
}

Contenders contendersFor(const std::string& program) {
    const auto here = std::filesystem::canonical("/proc/self/exe").parent_path();
    const Contender floor{.command = {here / "vantrel_floor"}};
    const Contender floorAtRest{.command = {here / "vantrel_floor", "--display-link"}};
    const Contender floorAtShortcut{.command = {here / "vantrel_floor", "--shortcut"}};
    const Contender empty{.command = {here / "vantrel_empty_tray"}};
    if (program.empty()) {
        return {floor,       floorAtRest,     floorAtShortcut, empty, floor,
                floorAtRest, floorAtShortcut, empty,           false};
    }
    const Contender tested{.command = {std::filesystem::canonical(program)}};
    return {tested, tested, tested, tested, floor, floorAtRest, floorAtShortcut, empty};
}

Milliseconds timeToChange(const desktop::XConnection& connection,
                          const std::vector<desktop::PixelPoint>& places,
                          const std::vector<std::uint32_t>& before, Clock::time_point begin) {
    while (pixelsAt(connection, places) == before) {
        if (Clock::now() - begin > 10s) {
            throw std::runtime_error("nothing appeared on the screen");
        }
        std::this_thread::sleep_for(20us);
    }
    return Clock::now() - begin;
}

desktop::ChildProcess startAndAwait(BenchDesktop& desktop, const Contender& contender,
                                    const std::string& display) {
    desktop::Environment environment = desktop.server.environment();
    if (!display.empty()) {
        environment["DISPLAY"] = display;
    }
    const desktop::PixelPoint place = desktop.connection.pointer();
    // What was there before has gone.
    desktop::waitFor(
        [&] { return desktop::pixelAt(desktop.connection, place) == desktop.background; });
    const auto begin = Clock::now();
    desktop::ChildProcess process({.arguments = contender.command,
                                   .environment = environment,
                                   .errors = desktop.server.folder() / "contender.err"});
    static_cast<void>(timeToChange(desktop.connection, {place}, {desktop.background}, begin));
    return process;
}

void atPace(double stepsPerSecond, double seconds, const std::function<void(int)>& step) {
    const auto begin = Clock::now();
    const int count = static_cast<int>(stepsPerSecond * seconds);
    for (int i = 0; i < count; ++i) {
        std::this_thread::sleep_until(begin +
                                      std::chrono::duration_cast<Clock::duration>(
                                          std::chrono::duration<double>(i / stepsPerSecond)));
        step(i);
    }
}

CirclePlace onCircle(int step, double radius) {
    const double angle = step * 2 * std::numbers::pi / 1000;
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

} // namespace vantrel::bench
