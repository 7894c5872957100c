#pragma once

#include "overlay/overlay_window_manager.h"
#include "support/event_loop.h"
#include "testdesk/client_window.h"
#include "testdesk/core_application.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/displays.h"
#include "testdesk/headless/x11_with_memory.h"
#include "testdesk/private_server.h"
#include "testdesk/screen_capture.h"
#include "testdesk/synthetic_input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace vantrel::desktop {

inline constexpr std::uint32_t blue = 0x204080;
inline constexpr std::uint32_t yellow = 0xFACC15;

// What shows where a colour lies at an opacity over another.
inline std::uint32_t blended(std::uint32_t color, double opacity, std::uint32_t below = blue) {
    std::uint32_t result = 0;
    for (const unsigned shift : {16U, 8U, 0U}) {
        const auto top = static_cast<double>((color >> shift) & 0xFFU);
        const auto bottom = static_cast<double>((below >> shift) & 0xFFU);
        const auto mixed = top * opacity + bottom * (1 - opacity);
        result |= static_cast<std::uint32_t>(mixed + 0.5) << shift;
    }
    return result;
}

// The overlays of this process on a private server, with a blue desktop beneath them.
class OverlayDesktopTest : public ::testing::Test {
protected:
    explicit OverlayDesktopTest(PrivateServer privateServer = PrivateServer::virtualScreen({1000,
                                                                                            600}))
        : server(std::move(privateServer)), watcher(server.display()), input(server.display()) {}

    void TearDown() override {
        manager.reset();
        x11.reset();
        connection.reset();
        EXPECT_TRUE(runUntil([this] { return ownWindows().empty(); }));
    }

    void paintDesktop(PixelSize size = {1000, 600}) {
        background.emplace(server.display(),
                           ClientWindowOptions{.area = {0, 0, size.width, size.height},
                                               .color = 0xFF000000U | blue});
    }
    void startCompositing() { compositing.emplace(startCompositingManager(server)); }
    // Nothing is shown before a mode is applied.
    void connect() {
        x11::ConnectionError error;
        connection = x11::Connection::open(server.display(), error);
        ASSERT_TRUE(connection) << error.english;
        x11 = std::make_unique<x11::X11Desktop>(*connection);
        manager = std::make_unique<OverlayWindowManager>(desktopOn(*x11, rest.mainQueue, rest));
    }
    void start(CursorMode mode = CursorMode::highlight) {
        connect();
        show(mode);
    }
    void show(CursorMode mode) { manager->apply(mode, preferences); }

    static void runFor(std::chrono::milliseconds time) {
        runUntil([] { return false; }, time);
    }
    [[nodiscard]] std::uint32_t pixel(PixelPoint place) const { return pixelAt(watcher, place); }
    // Waits for a colour, give or take rounding.
    [[nodiscard]] ::testing::AssertionResult becomes(PixelPoint place, std::uint32_t color,
                                                     int tolerance = 3) {
        if (runUntil([&] { return channelDistance(pixel(place), color) <= tolerance; })) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure() << std::hex << "pixel " << place.x << " " << place.y
                                             << " is " << pixel(place) << " instead of " << color;
    }
    // Windows of this process's overlays that the server holds.
    [[nodiscard]] std::vector<xcb_window_t> ownWindows() const {
        const auto tree = ownReply(xcb_query_tree_reply(
            watcher.get(), xcb_query_tree(watcher.get(), watcher.root()), nullptr));
        const auto* children = xcb_query_tree_children(tree.get());
        std::vector<xcb_window_t> windows(children,
                                          children + xcb_query_tree_children_length(tree.get()));
        std::erase_if(windows, [this](xcb_window_t window) {
            return watcher.property(window, "_NET_WM_BYPASS_COMPOSITOR").empty();
        });
        return windows;
    }
    [[nodiscard]] std::ptrdiff_t ownMappedWindows() const {
        return std::ranges::count_if(ownWindows(), [this](xcb_window_t window) {
            const auto attributes = ownReply(xcb_get_window_attributes_reply(
                watcher.get(), xcb_get_window_attributes(watcher.get(), window), nullptr));
            return attributes && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
        });
    }

    PrivateServer server;
    XConnection watcher;
    SyntheticInput input;
    std::optional<ChildProcess> compositing;
    std::optional<ClientWindow> background;
    AppPreferences preferences;

    headless::Desktop rest;
    std::unique_ptr<x11::Connection> connection;
    std::unique_ptr<x11::X11Desktop> x11;
    std::unique_ptr<OverlayWindowManager> manager;

private:
    CoreApplication application_;
};

} // namespace vantrel::desktop
