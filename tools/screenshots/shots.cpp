#include "shots.h"

#include "look.h"

#include <array>
#include <string>

namespace vantrel::screenshots {
namespace {

using desktop::PixelPoint;
using desktop::PixelSize;

// As the windows open, in points.
constexpr PixelSize settingsSize{560, 640};
constexpr PixelSize welcomeSize{560, 580};
constexpr PixelSize helpSize{520, 540};
// Places in them, from their top-left corners; in the panel, from its bottom-left corner.
constexpr int tabRow = 180;
constexpr int firstTab = 67;
constexpr int tabStep = 106;
constexpr PixelPoint helpInPanel{128, -28};

constexpr PixelPoint onSlide{205, 346};
constexpr PixelPoint onChart{640, 300};

nlohmann::json usualPreferences(const std::string& mode) {
    auto preferences = desktop::preferencesShowing(mode);
    preferences["highlight"]["opacity"] = 0.45;
    return preferences;
}

desktop::WindowState openSettings(Desk& desk, const nlohmann::json& preferences,
                                  const desktop::Environment& environment = {}) {
    desk.start(preferences, {.arguments = {"--settings"}, .environment = environment});
    return desk.window(settingsSize);
}

void panelInHighlightMode(Desk& desk) {
    desk.start(usualPreferences("highlight"));
    desk.openPanel();
    desk.movePointer(onSlide);
    desk.takeStage({0, 0, 1280, 720}, "panel-highlight");
}

void panelInLaserMode(Desk& desk) {
    desk.start(usualPreferences("laser"));
    desk.openPanel();
    desk.movePointer(onChart);
    desk.takeStage({480, 80, 800, 640}, "panel-laser");
}

void settings(Desk& desk) {
    constexpr std::array tabs{"appearance", "effects", "controls", "general", "about"};
    const auto window = openSettings(desk, usualPreferences("highlight"));
    int place = firstTab;
    for (const std::string tab : tabs) {
        if (tab != tabs.front()) {
            desk.click(window, {place, tabRow});
        }
        desk.takeWindow(window, "settings-" + tab);
        place += tabStep;
    }
}

void welcome(Desk& desk) {
    desk.start(nullptr);
    desk.takeWindow(desk.window(welcomeSize), "welcome");
}

void help(Desk& desk) {
    desk.start(usualPreferences("off"));
    const auto panel = desk.openPanel();
    desk.click(panel, {helpInPanel.x, panel.area.height + helpInPanel.y});
    desk.takeWindow(desk.window(helpSize), "help");
}

void inChinese(Desk& desk) {
    auto preferences = usualPreferences("highlight");
    preferences["language"] = "chinese";
    desk.takeWindow(openSettings(desk, preferences), "settings-chinese");
}

// On a desktop with dark colours.
void inTheDark(Desk& desk) {
    const auto window = openSettings(desk, usualPreferences("laser"), darkDesktop());
    desk.takeWindow(window, "settings-dark");
}

} // namespace

const std::vector<Shot>& shots() {
    static const std::vector<Shot> all{
        {"The panel in Highlight mode", panelInHighlightMode},
        {"The panel in Laser mode", panelInLaserMode},
        {"The settings", settings},
        {"The settings in Chinese", inChinese},
        {"The settings on a dark desktop", inTheDark},
        {"The welcome", welcome},
        {"The help", help},
    };
    return all;
}

} // namespace vantrel::screenshots
