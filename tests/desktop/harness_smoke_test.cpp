#include "desktop/harness/client_window.h"
#include "desktop/harness/desktop_programs.h"
#include "desktop/harness/displays.h"
#include "desktop/harness/screen_capture.h"
#include "desktop/harness/usage.h"
#include "desktop/harness/wait.h"
#include "desktop/harness/x_traffic.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/randr.h>

namespace vantrel::desktop {
namespace {

struct Monitor {
    PixelRect area;
    bool primary = false;

    bool operator==(const Monitor&) const = default;
};

std::vector<Monitor> monitorsOf(const XConnection& connection) {
    const auto reply = ownReply(xcb_randr_get_monitors_reply(
        connection.get(), xcb_randr_get_monitors(connection.get(), connection.root(), 1), nullptr));
    std::vector<Monitor> monitors;
    for (auto monitor = xcb_randr_get_monitors_monitors_iterator(reply.get()); monitor.rem > 0;
         xcb_randr_monitor_info_next(&monitor)) {
        const auto& m = *monitor.data;
        monitors.push_back({{m.x, m.y, m.width, m.height}, m.primary != 0});
    }
    return monitors;
}

// Frames for each second of the modes that are shown.
std::vector<double> ratesOf(const XConnection& connection) {
    const auto resources = ownReply(xcb_randr_get_screen_resources_current_reply(
        connection.get(),
        xcb_randr_get_screen_resources_current(connection.get(), connection.root()), nullptr));
    const auto* crtcs = xcb_randr_get_screen_resources_current_crtcs(resources.get());
    const auto* modes = xcb_randr_get_screen_resources_current_modes(resources.get());
    std::vector<double> rates;
    for (int i = 0; i < resources->num_crtcs; ++i) {
        const auto crtc = ownReply(xcb_randr_get_crtc_info_reply(
            connection.get(), xcb_randr_get_crtc_info(connection.get(), crtcs[i], 0), nullptr));
        for (int j = 0; j < resources->num_modes; ++j) {
            if (modes[j].id == crtc->mode) {
                rates.push_back(double(modes[j].dot_clock) / modes[j].htotal / modes[j].vtotal);
            }
        }
    }
    return rates;
}

TEST(HarnessSmoke, VirtualScreenIsDividedIntoMonitors) {
    const PrivateServer server = PrivateServer::virtualScreen({1200, 400});
    const XConnection connection(server.display());
    setMonitors(connection, {{0, 0, 400, 400}, {400, 0, 400, 400}, {800, 0, 400, 300}});
    EXPECT_EQ(monitorsOf(connection), (std::vector<Monitor>{{{0, 0, 400, 400}, true},
                                                            {{400, 0, 400, 400}, false},
                                                            {{800, 0, 400, 300}, false}}));
    setMonitors(connection, {{0, 0, 600, 400}});
    EXPECT_EQ(monitorsOf(connection), (std::vector<Monitor>{{{0, 0, 600, 400}, true}}));
}

TEST(HarnessSmoke, OutputsTakeModesOf60And120HzAndCanBeUnplugged) {
    const PrivateServer server = PrivateServer::virtualOutputs();
    const XConnection connection(server.display());
    const Output slow{.size = {1920, 1080}, .rate = 60};
    const Output fast{.size = {1280, 720}, .rate = 120, .position = {1920, 0}};
    setOutputs(connection, {slow, fast});
    const std::vector<double> rates = ratesOf(connection);
    ASSERT_EQ(rates.size(), 2U);
    EXPECT_NEAR(rates[0], 60, 0.001);
    EXPECT_NEAR(rates[1], 120, 0.001);
    ASSERT_EQ(monitorsOf(connection).size(), 2U);
    EXPECT_EQ(monitorsOf(connection)[1].area, (PixelRect{1920, 0, 1280, 720}));

    setOutputs(connection, {slow});
    EXPECT_EQ(monitorsOf(connection).size(), 1U);
    setOutputs(connection, {});
    EXPECT_TRUE(ratesOf(connection).empty());
    setOutputs(connection, {slow, fast});
    EXPECT_EQ(ratesOf(connection).size(), 2U);
}

class Composition : public testing::TestWithParam<CompositingManager> {};

TEST_P(Composition, BlendsATranslucentWindowWithWhatIsBeneath) {
    const PrivateServer server = PrivateServer::virtualScreen({640, 480});
    const XConnection connection(server.display());
    const ChildProcess manager = startCompositingManager(server, GetParam());
    const ClientWindow beneath(server.display(), {.area = {0, 0, 640, 480}, .color = 0xFF0000FF});
    const ClientWindow above(server.display(), {.area = {100, 100, 200, 200},
                                                .color = 0x80FF0000,
                                                .translucent = true,
                                                .type = "_NET_WM_WINDOW_TYPE_DND"});
    const auto blended = [&] {
        return channelDistance(pixelAt(connection, {200, 200}), 0x80007F) <= 1;
    };
    EXPECT_TRUE(waitFor(blended));
    EXPECT_EQ(pixelAt(connection, {50, 50}), 0x0000FFU);
}

INSTANTIATE_TEST_SUITE_P(HarnessSmoke, Composition,
                         testing::Values(CompositingManager::picom,
                                         CompositingManager::picomEyeCandy,
                                         CompositingManager::xcompmgr));

TEST(HarnessSmoke, AClickArrivesWithTheWindowManagerRunning) {
    const PrivateServer server = PrivateServer::virtualScreen({640, 480});
    const ChildProcess manager = startWindowManager(server);
    ClientWindow window(server.display(),
                        {.area = {0, 0, 640, 480}, .overrideRedirect = false, .fullScreen = true});
    SyntheticInput input(server.display());
    input.moveTo({320, 240});
    input.click(Button::right);
    ASSERT_TRUE(waitFor([&] { return window.events().size() >= 2; }));
    EXPECT_EQ(window.events(),
              (std::vector<InputEvent>{{InputEvent::Type::buttonPress, 3, {320, 240}},
                                       {InputEvent::Type::buttonRelease, 3, {320, 240}}}));
}

TEST(HarnessSmoke, TrafficIsCountedByRequest) {
    const PrivateServer server = PrivateServer::virtualScreen({640, 480});
    const XTraffic traffic(server.display());
    const XConnection connection(traffic.display());
    connection.sync();
    const TrafficCounts before = traffic.counts();
    const std::uint32_t black = 0;
    xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_BACK_PIXEL, &black);
    xcb_destroy_window(connection.get(), 1); // no such window
    connection.sync();
    const TrafficCounts counts = traffic.counts() - before;
    EXPECT_EQ(counts.requests,
              (std::map<RequestKind, std::uint64_t>{{{XCB_CHANGE_WINDOW_ATTRIBUTES, 0}, 1},
                                                    {{XCB_DESTROY_WINDOW, 0}, 1},
                                                    {{XCB_QUERY_POINTER, 0}, 1}}));
    EXPECT_EQ(counts.requestBytes, 16U + 8U + 8U);
    EXPECT_EQ(counts.replies, 1U);
    EXPECT_EQ(counts.errors, (std::map<std::uint8_t, std::uint64_t>{{XCB_WINDOW, 1}}));
}

TEST(HarnessSmoke, TheServerTellsWhatItHoldsForAProcess) {
    const PrivateServer server = PrivateServer::virtualScreen({640, 480});
    const XConnection connection(server.display());
    const ServerResources before = serverResources(connection, getpid());
    const xcb_pixmap_t pixmap = xcb_generate_id(connection.get());
    xcb_create_pixmap(connection.get(), 24, pixmap, connection.root(), 100, 100);
    connection.sync();
    const ServerResources after = serverResources(connection, getpid());
    EXPECT_EQ(after.pixmapBytes - before.pixmapBytes, 40'000U);
    EXPECT_EQ(after.pixmaps - before.pixmaps, 1U);
}

// A process that nobody waited for yet has ended too.
bool hasEnded(pid_t process) {
    const std::string status = readFile("/proc/" + std::to_string(process) + "/status");
    return status.empty() || status.find("State:\tZ") != std::string::npos;
}

TEST(HarnessSmoke, AServerEndsWithTheProcessThatStartedIt) {
    const TemporaryFolder folder; // the starter has no time to clean up
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t starter = fork();
    if (starter == 0) {
        setenv("TMPDIR", folder.path().c_str(), 1);
        const PrivateServer server = PrivateServer::virtualScreen({64, 64});
        const pid_t pid = server.pid();
        const bool told = write(ends[1], &pid, sizeof(pid)) == sizeof(pid);
        raise(told ? SIGKILL : SIGABRT);
    }
    pid_t server = 0;
    ASSERT_EQ(read(ends[0], &server, sizeof(server)), static_cast<ssize_t>(sizeof(server)));
    EXPECT_EQ(waitpid(starter, nullptr, 0), starter);
    EXPECT_TRUE(waitFor([&] { return hasEnded(server); }));
    close(ends[0]);
    close(ends[1]);
}

} // namespace
} // namespace vantrel::desktop
