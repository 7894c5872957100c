#include "scenes.h"

#include <initializer_list>
#include <string>

namespace vantrel::demo {
namespace {

using namespace std::chrono_literals;
using desktop::Button;
using desktop::PixelPoint;

// Places on the stage that a speaker would point at.
constexpr PixelPoint aside{1130, 560};
constexpr PixelPoint title{330, 150};
constexpr PixelPoint firstPoint{190, 262};
constexpr PixelPoint secondPoint{200, 346};
constexpr PixelPoint thirdPoint{205, 430};
constexpr PixelPoint functionName{952, 304};
constexpr PixelPoint lastLine{1040, 412};

PixelPoint bar(int number) {
    const QPoint middle = barArea(number).center() + slideArea.topLeft();
    return {middle.x(), middle.y()};
}

nlohmann::json highlight(const std::string& style, double opacity, const nlohmann::json& color,
                         const std::string& click = "ripple") {
    auto preferences = desktop::preferencesShowing("highlight");
    preferences["highlight"]["style"] = style;
    preferences["highlight"]["opacity"] = opacity;
    preferences["highlight"]["color"] = color;
    preferences["click"]["style"] = click;
    return preferences;
}

const nlohmann::json yellow{{"red", 0.98}, {"green", 0.8}, {"blue", 0.08}};
const nlohmann::json green{{"red", 0.16}, {"green", 0.7}, {"blue", 0.44}};
const nlohmann::json blue{{"red", 0.2}, {"green", 0.5}, {"blue", 0.98}};

nlohmann::json laser(const std::string& glow) {
    auto preferences = desktop::preferencesShowing("laser");
    preferences["laser"]["glow"] = glow;
    return preferences;
}

void plainDesktop(Show& show) {
    show.hand().rest(400ms);
    show.hand().moveTo(thirdPoint, 1000ms);
    show.hand().moveTo(title, 900ms);
    show.hand().rest(500ms);
}

void filled(Show& show) {
    show.toggle("highlight", true);
    show.hand().rest(500ms);
    for (const PixelPoint place : {firstPoint, secondPoint, thirdPoint}) {
        show.hand().moveTo(place, 700ms);
        show.hand().rest(400ms);
    }
    show.takeStill("highlight-filled");
    show.hand().moveTo(bar(3), 900ms);
    show.click("click-ripple");
    show.hand().rest(600ms);
}

void ring(Show& show) {
    show.startVantrel(highlight("ring", 0.9, green, "pulse"));
    show.hand().rest(400ms);
    show.hand().moveTo(bar(2), 500ms);
    show.click("click-pulse");
    show.hand().rest(500ms);
    show.hand().moveTo(functionName, 800ms);
    show.takeStill("highlight-ring");
    show.click("click-right", Button::right);
    show.hand().rest(500ms);
    show.hand().moveTo(lastLine, 600ms);
    show.hand().rest(400ms);
}

void glow(Show& show) {
    show.startVantrel(highlight("glow", 0.8, blue));
    show.hand().rest(400ms);
    show.hand().moveTo(bar(1), 900ms);
    show.hand().rest(400ms);
    show.hand().moveTo(title, 800ms);
    show.takeStill("highlight-glow");
    show.hand().rest(400ms);
}

void idleHiding(Show& show) {
    auto preferences = highlight("glow", 0.8, blue);
    preferences["highlight"]["idleHide"] = true;
    preferences["highlight"]["idleSeconds"] = 2;
    show.startVantrel(preferences);
    show.hand().moveTo(secondPoint, 700ms);
    show.waitForEffect(false);
    show.takeStill("idle-hidden");
    show.hand().rest(700ms);
    show.hand().moveTo(bar(0), 800ms);
    show.waitForEffect(true);
    show.hand().rest(300ms);
}

void laserLow(Show& show) {
    show.startVantrel(laser("low"));
    show.hand().rest(400ms);
    show.hand().moveTo(firstPoint, 900ms);
    show.hand().rest(300ms);
    show.hand().moveTo({firstPoint.x + 190, firstPoint.y + 4}, 900ms);
    show.hand().rest(300ms);
}

void laserMedium(Show& show) {
    show.startVantrel(laser("medium"));
    show.hand().moveTo({bar(3).x + 36, bar(3).y - 70}, 900ms);
    show.hand().circle({bar(3).x, bar(3).y - 70}, 2, 2000ms);
    show.takeStill("laser");
    show.hand().rest(250ms);
}

void laserHigh(Show& show) {
    show.startVantrel(laser("high"));
    show.hand().moveTo(functionName, 800ms);
    show.hand().rest(400ms);
    show.hand().moveTo(lastLine, 700ms);
    show.takeStill("laser-high");
    show.hand().rest(600ms);
}

void switchedOff(Show& show) {
    show.toggle("laser", false);
    show.hand().moveTo(aside, 1000ms);
    show.hand().rest(800ms);
}

Scene scene(const char* heading, const char* detail, bool inShortForm, void (*play)(Show&)) {
    return {.caption = {.title = QString::fromUtf8(heading), .detail = QString::fromUtf8(detail)},
            .inShortForm = inShortForm,
            .play = play};
}

} // namespace

// The shortcuts work from the moment on that an effect is shown, so one is shown first.
void prepare(Show& show) {
    show.startVantrel(highlight("filled", 0.4, yellow));
    show.toggle("highlight", false);
}

std::vector<Scene> scenes(const Session& session) {
    const bool keys = session.hasShortcuts;
    const bool clicks = session.tellsOfClicks;
    const char* toggleLaser = keys ? "Control + Alt + L" : "vantrel toggle laser";
    return {
        scene("Where is the pointer?", "an ordinary desktop", true, plainDesktop),
        scene("Highlight: filled",
              keys ? "Control + Alt + H · a ripple at each click" : "vantrel toggle highlight",
              true, filled),
        scene("Highlight: ring", clicks ? "a pulse at each click" : "clicks go through it", false,
              ring),
        scene("Highlight: glow", "in any colour, size and opacity", false, glow),
        scene("Hidden while it rests", "back with the next movement", false, idleHiding),
        scene("Laser: low glow", toggleLaser, false, laserLow),
        scene("Laser: medium glow", toggleLaser, false, laserMedium),
        scene("Laser: high glow", toggleLaser, true, laserHigh),
        scene("Off", keys ? "the same shortcut again" : "the same command again", true,
              switchedOff),
    };
}

} // namespace vantrel::demo
