#include "measurements.h"

#include "motion_latencies.h"
#include "tray_desktop.h"

#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

namespace vantrel::bench {
namespace {

bool isColorful(std::uint32_t pixel) {
    const auto channels = {pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF};
    return std::max(channels) - std::min(channels) > 100;
}

// The first slider from the top: its filled part is a line of the accent colour, thicker than a
// frame and thinner than a button.
desktop::PixelPoint sliderIn(const desktop::XConnection& connection,
                             const desktop::PixelRect& panel) {
    const auto picture = desktop::captureScreen(connection, panel);
    const int left = panel.x + 40;
    const int right = panel.x + panel.width - 30;
    int thickness = 0;
    for (int y = panel.y; y < panel.y + panel.height; ++y) {
        if (isColorful(picture.at({left, y})) && !isColorful(picture.at({right, y}))) {
            ++thickness;
        } else if (const int line = std::exchange(thickness, 0); line >= 3 && line <= 6) {
            return {left, y - 2};
        }
    }
    throw std::runtime_error("no slider in the panel");
}

double storedDiameter(const TrayDesktop& desktop) {
    const auto stored =
        nlohmann::json::parse(desktop::readFile(storedDocument(desktop.bench)), nullptr, false);
    return stored.is_object() ? stored["highlight"]["diameter"].get<double>() : 0;
}

// Above the panel and right over the slider, whose value follows every motion there.
desktop::PixelRect dragArea(const TrayProgram& program) {
    return {program.popup.x + 20, 100, program.popup.width - 40, program.popup.y - 250};
}

Samples latencies(TrayDesktop& desktop, const TrayProgram& program, bool dragging, int count) {
    // Every drag ends at the same place.
    desktop::writePreferences(desktop.bench.server.environment().at("XDG_CONFIG_HOME"),
                              desktop::preferencesShowing("highlight"));
    const auto process = startInTray(desktop, program);
    openPopup(desktop, program);
    const double former = storedDiameter(desktop);
    auto& input = desktop.bench.input;
    if (dragging) {
        const auto slider = sliderIn(desktop.bench.connection, program.popup);
        input.moveTo(slider);
        input.press(desktop::Button::left);
    }
    Samples samples = motionLatencies(desktop.bench, count, dragArea(program));
    if (dragging) {
        input.release(desktop::Button::left);
        if (!desktop::waitFor([&] { return storedDiameter(desktop) != former; })) {
            throw std::runtime_error("the slider did not follow");
        }
    }
    return samples;
}

} // namespace

Report measureDrag(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    TrayDesktop desktop;
    const auto program = rehearse(desktop, contenders.programAsApplication, true);
    const auto measure = [&](bool dragging) {
        return latencies(desktop, program, dragging, effort.motionsInTurn);
    };
    const Comparison comparison = inTurns(
        effort.turns, [&] { return measure(true); }, [&] { return measure(false); });
    return {.rows = {summarize("motion while a slider is dragged / at rest", "ms", comparison,
                               median, 1.5)}};
}

} // namespace vantrel::bench
