#include "platform/frame_timer.h"

#include <cmath>
#include <cstdint>

#include <sys/timerfd.h>
#include <unistd.h>

namespace vantrel {

FrameTimer::FrameTimer(double rate, std::function<void()> target)
    : period_(std::lround(1e9 / rate)),
      descriptor_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
      notifier_(descriptor_, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated,
                     [descriptor = descriptor_, target = std::move(target)] {
                         std::uint64_t expirations = 0;
                         if (read(descriptor, &expirations, sizeof expirations) > 0) {
                             target();
                         }
                     });
    start(period_);
}

FrameTimer::~FrameTimer() {
    notifier_.setEnabled(false);
    close(descriptor_);
}

void FrameTimer::putOff() const {
    start(period_ + period_ / 2);
}

void FrameTimer::start(Nanoseconds first) const {
    const auto toTimespec = [](Nanoseconds time) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
        return timespec{seconds.count(), (time - seconds).count()};
    };
    const itimerspec spec{toTimespec(period_), toTimespec(first)};
    timerfd_settime(descriptor_, 0, &spec, nullptr);
}

} // namespace vantrel
