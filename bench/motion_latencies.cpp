#include "motion_latencies.h"

#include "desktop/harness/wait.h"

#include <cmath>
#include <thread>

namespace vantrel::bench {
namespace {

// Far enough from the last place that the discs do not touch.
desktop::PixelPoint elsewhere(std::mt19937& random, desktop::PixelPoint last) {
    std::uniform_int_distribution<int> x(100, 1820);
    std::uniform_int_distribution<int> y(100, 980);
    desktop::PixelPoint place = last;
    while (std::hypot(place.x - last.x, place.y - last.y) < 150) {
        place = {x(random), y(random)};
    }
    return place;
}

} // namespace

void Pause::take() {
    std::uniform_int_distribution<int> pause(5'000, 21'000);
    std::this_thread::sleep_for(std::chrono::microseconds(pause(random_)));
}

Samples motionLatencies(BenchDesktop& desktop, int count) {
    std::mt19937 random(7);
    Pause pause;
    desktop::PixelPoint place = desktop.connection.pointer();
    const std::uint32_t covered = desktop::pixelAt(desktop.connection, place);
    Samples samples;
    for (int i = 0; i < count + 10; ++i) {
        const desktop::PixelPoint next = elsewhere(random, place);
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
