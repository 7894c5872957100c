#include "hand.h"

#include "interruption.h"

#include <cmath>
#include <numbers>

namespace vantrel::demo {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

// As often as a common mouse reports.
constexpr auto step = 8ms;

// The smoothest way from 0 to 1: at rest, and without a jerk, at both ends.
double eased(double t) {
    return t * t * t * (10 - 15 * t + 6 * t * t);
}

desktop::PixelPoint rounded(double x, double y) {
    return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
}

} // namespace

Hand::Hand(const std::string& display, desktop::PixelPoint start) : input_(display), place_(start) {
    input_.moveTo(start);
}

// path: from the part of the way that is done, 0 to 1, to a place.
template <typename Path>
void Hand::follow(const Path& path, std::chrono::milliseconds duration) {
    const auto start = steady_clock::now();
    for (auto moment = start; moment < start + duration;) {
        moment += step;
        sleepUntil(moment);
        const double done = std::chrono::duration<double>(moment - start) / duration;
        place_ = path(eased(std::min(done, 1.0)));
        input_.moveTo(place_);
    }
}

void Hand::moveTo(desktop::PixelPoint target, std::chrono::milliseconds duration) {
    constexpr double arc = 0.09; // of the distance
    const auto from = place_;
    const double dx = target.x - from.x;
    const double dy = target.y - from.y;
    follow(
        [&](double done) {
            const double swing = arc * 4 * done * (1 - done);
            return rounded(from.x + dx * done + dy * swing, from.y + dy * done - dx * swing);
        },
        duration);
}

void Hand::circle(desktop::PixelPoint centre, int turns, std::chrono::milliseconds duration) {
    const double radius = std::hypot(place_.x - centre.x, place_.y - centre.y);
    const double start = std::atan2(place_.y - centre.y, place_.x - centre.x);
    follow(
        [&](double done) {
            const double angle = start + 2 * std::numbers::pi * turns * done;
            return rounded(centre.x + radius * std::cos(angle),
                           centre.y + radius * std::sin(angle));
        },
        duration);
}

void Hand::rest(std::chrono::milliseconds duration) {
    sleepUntil(steady_clock::now() + duration);
}

} // namespace vantrel::demo
