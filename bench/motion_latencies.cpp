#include "motion_latencies.h"

#include "testdesk/wait.h"

#include <cmath>
#include <thread>

namespace vantrel::bench {
namespace {

// Far enough from the last place that the discs do not touch.
desktop::PixelPoint elsewhere(std::mt19937& random, desktop::PixelPoint last,
                              const desktop::PixelRect& within) {
    std::uniform_int_distribution<int> x(within.x, within.x + within.width);
    std::uniform_int_distribution<int> y(within.y, within.y + within.height);
    desktop::PixelPoint place = last;
    while (std::hypot(place.x - last.x, place.y - last.y) < 150) {
        place = {x(random), y(random)};
    }
    return place;
}

// The colour of the marked pointer there.
std::uint32_t goTo(BenchDesktop& desktop, desktop::PixelPoint place) {
    desktop.input.moveTo(place);
    desktop::waitFor(
        [&] { return desktop::pixelAt(desktop.connection, place) != desktop.background; });
    return desktop::pixelAt(desktop.connection, place);
}

} // namespace

void Pause::take() {
    std::uniform_int_distribution<int> pause(5'000, 21'000);
    std::this_thread::sleep_for(std::chrono::microseconds(pause(random_)));
}

Samples motionLatencies(BenchDesktop& desktop, int count, const desktop::PixelRect& within) {
    std::mt19937 random(7);
    Pause pause;
    desktop::PixelPoint place{within.x + within.width / 2, within.y + within.height / 2};
    const std::uint32_t covered = goTo(desktop, place);
    Samples samples;
    for (int i = 0; i < count + 10; ++i) {
        const desktop::PixelPoint next = elsewhere(random, place, within);
        pause.take();
        const auto begin = Clock::now();
        desktop.input.moveTo(next, desktop::SyntheticInput::Wait::no);
        const Milliseconds time =
            timeToChange(desktop.connection, {next, place}, {desktop.background, covered}, begin);
        if (i >= 10) { // the first ones warm up
            samples.push_back(time.count());
        }
        desktop::waitFor([&] { return desktop::pixelAt(desktop.connection, next) == covered; });
        place = next;
    }
    return samples;
}

} // namespace vantrel::bench
