#include "platform/frame_timer.h"

#include <cmath>
#include <cstdint>

#include <sys/timerfd.h>
#include <unistd.h>

namespace vantrel {

FrameTimer::FrameTimer(double rate, std::function<void()> target)
    : descriptor_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
      notifier_(descriptor_, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated,
                     [descriptor = descriptor_, target = std::move(target)] {
                         std::uint64_t expirations = 0;
                         if (read(descriptor, &expirations, sizeof expirations) > 0) {
                             target();
                         }
                     });
    const auto period = static_cast<long>(std::lround(1e9 / rate));
    constexpr long second = 1'000'000'000;
    const timespec interval{period / second, period % second};
    const itimerspec spec{interval, interval};
    timerfd_settime(descriptor_, 0, &spec, nullptr);
}

FrameTimer::~FrameTimer() {
    notifier_.setEnabled(false);
    close(descriptor_);
}

} // namespace vantrel
