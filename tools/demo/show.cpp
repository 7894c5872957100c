#include "show.h"

#include "interruption.h"
#include "photograph.h"
#include "testdesk/screen_capture.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace vantrel::demo {
namespace {

constexpr desktop::PixelPoint start{1130, 560};
constexpr std::chrono::seconds commandLimit(10);

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

Show::Show(SessionKind kind, std::filesystem::path program, std::filesystem::path folder)
    : program_(std::move(program)),
      folder_(std::move(folder)),
      server_(stageServer()),
      session_(startSession(kind, server_, program_.parent_path().parent_path() / "share")),
      stage_({.screen = server_.display(),
              .display = session_->environment.at("DISPLAY"),
              .inOneWindow = !session_->placesWindows}),
      hand_(server_.display(), start) {}

void Show::startVantrel(const nlohmann::json& preferences) {
    if (vantrel_) {
        vantrel_->terminate();
    }
    auto environment = session_->environment;
    // The toolkit's own choice, as in any session.
    environment.try_emplace("QT_QPA_PLATFORM");
    vantrel_.emplace(desktop::startVantrel(
        server_, program_, {.preferences = preferences, .environment = environment}));
    waitForEffect(preferences.at("lastMode") != "off");
    checkMeans();
}

void Show::toggle(const std::string& mode, bool shown) {
    if (session_->hasShortcuts) {
        constexpr std::uint32_t control = 0xFFE3;
        constexpr std::uint32_t alt = 0xFFE9;
        hand_.type({control, alt, mode == "laser" ? std::uint32_t{'l'} : std::uint32_t{'h'}});
    } else {
        command({"toggle", mode}).wait(commandLimit);
    }
    waitForEffect(shown);
}

void Show::click(const std::string& still, desktop::Button button) {
    const int presses = stage_.presses();
    desktop::Picture before = aroundPointer();
    // A desktop draws the mark a moment after the motion, and that is no ring.
    expectOfVantrel("the mark at rest", [&] {
        hand_.rest(std::chrono::milliseconds(100));
        const auto earlier = std::exchange(before, aroundPointer());
        return before.pixels == earlier.pixels;
    });
    hand_.press(button);
    if (session_->tellsOfClicks) {
        expectOfVantrel("the ring of a click", [&] { return ringIsShown(before); });
    }
    const QImage picture = photograph(stage_.screen());
    expect("the click in the window beneath", [&] { return stage_.presses() == presses + 1; });
    hand_.release(button);
    if (session_->tellsOfClicks) {
        save(picture, folder_ / (still + ".png"));
    }
}

void Show::waitForEffect(bool shown) {
    expectOfVantrel(shown ? "an effect at the pointer" : "the pointer without an effect",
                    [&] { return effectIsShown() == shown; });
}

void Show::takeStill(const std::string& name) {
    save(photograph(stage_.screen()), folder_ / (name + ".png"));
}

desktop::Picture Show::aroundPointer() const {
    constexpr int reach = 40;
    const auto place = hand_.place();
    return desktop::captureScreen(stage_.screen(),
                                  {place.x - reach, place.y - reach, 2 * reach, 2 * reach});
}

desktop::ChildProcess Show::command(std::vector<std::string> words,
                                    const std::filesystem::path& output) const {
    words.insert(words.begin(), program_);
    return desktop::ChildProcess(
        {.arguments = words, .environment = session_->environment, .output = output});
}

// What is seen is also what Vantrel says, and not a makeshift.
void Show::checkMeans() {
    const auto file = server_.folder() / "status.json";
    const bool isSo = waitUninterrupted([&] {
        command({"status", "--json"}, file).wait(commandLimit);
        const auto status = nlohmann::json::parse(desktop::readFile(file), nullptr, false);
        return status.is_object() && status.at("marks") == session_->marks &&
               status.at("presses").is_null() != session_->tellsOfClicks;
    });
    if (!isSo) {
        throw std::runtime_error("Vantrel says of itself " + desktop::readFile(file));
    }
}

// The pointer itself, below and to the right of its place, is no effect.
bool Show::effectIsShown() const {
    const desktop::Picture screen = aroundPointer();
    const auto tip = hand_.place();
    constexpr int edge = 3;
    return anyPixel(screen, [&](desktop::PixelPoint place) {
        return (place.x < tip.x - edge || place.y < tip.y - edge) &&
               differs(screen.at(place), stage_.pictureAt(place));
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
