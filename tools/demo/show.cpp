#include "show.h"

#include "interruption.h"
#include "photograph.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/screen_capture.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace vantrel::demo {
namespace {

constexpr desktop::PixelPoint start{1130, 560};

bool differs(std::uint32_t one, std::uint32_t other) {
    constexpr int noticeable = 6;
    return desktop::channelDistance(one, other) >= noticeable;
}

// Whether the condition holds for a pixel of the picture.
bool anyPixel(const desktop::Picture& picture,
              const std::function<bool(desktop::PixelPoint)>& condition) {
    const desktop::PixelRect& area = picture.area;
    for (int y = area.y; y < area.y + area.height; ++y) {
        for (int x = area.x; x < area.x + area.width; ++x) {
            if (condition({x, y})) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

Show::Show(std::filesystem::path program, std::filesystem::path folder)
    : program_(std::move(program)),
      folder_(std::move(folder)),
      server_(stageServer()),
      windowManager_(desktop::startWindowManager(server_)),
      compositingManager_(desktop::startCompositingManager(server_)),
      stage_(server_.display()),
      hand_(server_.display(), start) {}

void Show::startVantrel(const nlohmann::json& preferences) {
    if (vantrel_) {
        vantrel_->terminate();
    }
    vantrel_.emplace(desktop::startVantrel(server_, program_, {.preferences = preferences}));
    waitForEffect(preferences.at("lastMode") != "off");
}

void Show::toggle(char key, bool shown) {
    constexpr std::uint32_t control = 0xFFE3;
    constexpr std::uint32_t alt = 0xFFE9;
    hand_.type({control, alt, static_cast<std::uint32_t>(key)});
    waitForEffect(shown);
}

void Show::click(const std::string& still, desktop::Button button) {
    const int presses = stage_.presses();
    const desktop::Picture before = aroundPointer();
    hand_.press(button);
    expectOfVantrel("the ring of a click", [&] { return ringIsShown(before); });
    const QImage picture = photograph(stage_.connection());
    expect("the click in the window beneath", [&] { return stage_.presses() == presses + 1; });
    hand_.release(button);
    save(picture, folder_ / (still + ".png"));
}

void Show::waitForEffect(bool shown) {
    expectOfVantrel(shown ? "an effect at the pointer" : "the pointer without an effect",
                    [&] { return effectIsShown() == shown; });
}

void Show::takeStill(const std::string& name) {
    save(photograph(stage_.connection()), folder_ / (name + ".png"));
}

desktop::Picture Show::aroundPointer() const {
    constexpr int reach = 40;
    const auto place = hand_.place();
    return desktop::captureScreen(stage_.connection(),
                                  {place.x - reach, place.y - reach, 2 * reach, 2 * reach});
}

bool Show::effectIsShown() const {
    const desktop::Picture screen = aroundPointer();
    return anyPixel(screen, [&](desktop::PixelPoint place) {
        return differs(screen.at(place), stage_.pictureAt(place));
    });
}

// A ring that has grown at least half-way.
bool Show::ringIsShown(const desktop::Picture& before) const {
    constexpr double halfway = 24;
    const auto centre = hand_.place();
    const desktop::Picture now = aroundPointer();
    return anyPixel(now, [&](desktop::PixelPoint place) {
        return std::hypot(place.x - centre.x, place.y - centre.y) >= halfway &&
               differs(now.at(place), before.at(place));
    });
}

void Show::expectOfVantrel(const std::string& what, const std::function<bool()>& condition) {
    expect(what, [&] {
        if (vantrel_ && !vantrel_->running()) {
            throw std::runtime_error("Vantrel ended: " +
                                     desktop::readFile(server_.folder() / "vantrel.err"));
        }
        return condition();
    });
}

} // namespace vantrel::demo
