#include "desk.h"

#include "demo/interruption.h"
#include "demo/photograph.h"
#include "look.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/screen_capture.h"

#include <stdexcept>
#include <utility>

namespace vantrel::screenshots {
namespace {

using namespace std::chrono_literals;

constexpr const char* programName = "vantrel";
constexpr const char* panelType = "_NET_WM_WINDOW_TYPE_UTILITY";
constexpr desktop::PixelPoint aside{1040, 640};

desktop::PrivateServer prepareServer() {
    auto server = demo::stageServer();
    writeLook(server.folder() / "config");
    return server;
}

} // namespace

Desk::Desk(std::filesystem::path program, std::filesystem::path folder)
    : program_(std::move(program)),
      folder_(std::move(folder)),
      server_(prepareServer()),
      windowManager_(desktop::startWindowManager(server_)),
      compositingManager_(desktop::startCompositingManager(server_)),
      stage_({.screen = server_.display(), .display = server_.display()}),
      tray_(server_),
      input_(server_.display()) {}

void Desk::start(const nlohmann::json& preferences, const desktop::VantrelOptions& options) {
    if (vantrel_) {
        vantrel_->terminate();
    }
    std::filesystem::remove_all(server_.folder() / "config" / programName);
    parkPointer();
    auto all = options;
    all.preferences = preferences;
    vantrel_.emplace(desktop::startVantrel(server_, program_, all));
    expectOfVantrel("the icon in the tray",
                    [&] { return tray_.iconArea(programName).has_value(); });
}

desktop::WindowState Desk::openPanel() {
    const auto icon = tray_.waitForIcon(programName);
    if (!icon) {
        throw std::runtime_error("not seen on the screen: the icon in the tray");
    }
    input_.moveTo(desktop::centerOf(*icon));
    input_.click();
    std::vector<desktop::WindowState> panels;
    expectOfVantrel("the panel", [&] {
        panels =
            desktop::visibleWindows(stage_.screen(), {.program = programName, .type = panelType});
        return !panels.empty() && desktop::hasFocus(stage_.screen(), panels.front().id);
    });
    return panels.front();
}

desktop::WindowState Desk::window(desktop::PixelSize content) {
    const desktop::WindowQuery query{.program = programName,
                                     .title = "Vantrel",
                                     .type = "_NET_WM_WINDOW_TYPE_NORMAL",
                                     .width = content.width,
                                     .height = content.height};
    std::vector<desktop::WindowState> windows;
    expectOfVantrel(
        "a window of " + std::to_string(content.width) + " by " + std::to_string(content.height),
        [&] {
            windows = desktop::visibleWindows(stage_.screen(), query);
            return !windows.empty() && desktop::hasFocus(stage_.screen(), windows.front().id);
        });
    waitForRest(windows.front().area);
    // The window manager has found a place for it meanwhile.
    return desktop::visibleWindows(stage_.screen(), query).at(0);
}

// The pointer stays until the click has had its effect: the window manager holds a press back, and
// gives it on where the pointer is by then.
void Desk::click(const desktop::WindowState& window, desktop::PixelPoint place) {
    const auto before = desktop::captureScreen(stage_.screen(), window.area);
    desktop::clickIn(input_, window, place);
    waitForRest(window.area);
    parkPointer();
    waitForRest(window.area);
    expectOfVantrel("what a click leads to", [&] {
        return !(desktop::captureScreen(stage_.screen(), window.area) == before);
    });
}

void Desk::movePointer(desktop::PixelPoint place) {
    input_.moveTo(place);
}

void Desk::parkPointer() {
    movePointer(aside);
}

void Desk::takeWindow(const desktop::WindowState& window, const std::string& name) {
    takeStage(framed(stage_.screen(), window), name);
}

void Desk::takeStage(const desktop::PixelRect& area, const std::string& name) {
    waitForRest(area);
    const QRect part(area.x, area.y, area.width, area.height);
    demo::save(demo::photograph(stage_.screen()).copy(part), folder_ / (name + ".png"));
}

void Desk::waitForRest(const desktop::PixelRect& area) {
    using std::chrono::steady_clock;
    constexpr auto rest = 400ms;
    auto seen = desktop::captureScreen(stage_.screen(), area);
    auto since = steady_clock::now();
    expectOfVantrel("a picture that does not change", [&] {
        auto now = desktop::captureScreen(stage_.screen(), area);
        if (now != seen) {
            seen = std::move(now);
            since = steady_clock::now();
        }
        return steady_clock::now() - since >= rest;
    });
}

void Desk::expectOfVantrel(const std::string& what, const std::function<bool()>& condition) {
    demo::expect(what, [&] {
        if (vantrel_ && !vantrel_->running()) {
            throw std::runtime_error("Vantrel ended: " +
                                     desktop::readFile(server_.folder() / "vantrel.err"));
        }
        return condition();
    });
}

} // namespace vantrel::screenshots
