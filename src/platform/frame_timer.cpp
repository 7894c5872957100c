#include "platform/frame_timer.h"

#include <chrono>
#include <cmath>
#include <cstdint>

#include <sys/timerfd.h>
#include <unistd.h>

namespace vantrel {

FrameTimer::FrameTimer(double rate, std::function<void()> target)
    : descriptor_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
      target_(std::move(target)),
      notifier_(descriptor_, QSocketNotifier::Read),
      wait_(descriptor_, [this] {
          call();
          return true;
      }) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, [this] { call(); });
    const std::chrono::nanoseconds period(std::lround(1e9 / rate));
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(period);
    const timespec every{seconds.count(), (period - seconds).count()};
    const itimerspec spec{every, every};
    timerfd_settime(descriptor_, 0, &spec, nullptr);
}

FrameTimer::~FrameTimer() {
    notifier_.setEnabled(false);
    close(descriptor_);
}

void FrameTimer::call() const {
    std::uint64_t expirations = 0;
    if (read(descriptor_, &expirations, sizeof expirations) > 0) {
        target_();
    }
}

} // namespace vantrel
