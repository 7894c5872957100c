#include "platform/freedesktop/qt_main_queue.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <sys/timerfd.h>
#include <system_error>

namespace vantrel {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

// Goes on while the machine sleeps, unlike the clock of Qt's timers.
constexpr clockid_t clockId = CLOCK_BOOTTIME;
constexpr double longestDelay = 1e9; // seconds, some thirty years

nanoseconds now() {
    timespec time{};
    clock_gettime(clockId, &time);
    return seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

nanoseconds toDelay(double delay) {
    const double bounded = delay > 0 ? std::min(delay, longestDelay) : 0;
    return std::chrono::ceil<nanoseconds>(std::chrono::duration<double>(bounded));
}

} // namespace

QtMainQueue::QtMainQueue() : timer_(timerfd_create(clockId, TFD_CLOEXEC | TFD_NONBLOCK)) {
    if (!timer_) {
        throw std::system_error(errno, std::generic_category(), "timerfd_create");
    }
    notifier_ = std::make_unique<QSocketNotifier>(timer_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { runDue(); });
}

void QtMainQueue::async(std::function<void()> call) {
    schedule(0, std::move(call));
}

Subscription QtMainQueue::after(double seconds, std::function<void()> call) {
    const Deadline deadline = schedule(seconds, std::move(call));
    return Subscription([waiting = std::weak_ptr(calls_), deadline] {
        if (const auto calls = waiting.lock()) {
            calls->erase(deadline);
        }
    });
}

QtMainQueue::Deadline QtMainQueue::schedule(double seconds, std::function<void()> call) {
    const Deadline deadline(now() + toDelay(seconds), ++lastNumber_);
    calls_->emplace(deadline, std::move(call));
    armTimer();
    return deadline;
}

void QtMainQueue::runDue() {
    std::uint64_t expirations = 0;
    if (read(timer_.get(), &expirations, sizeof expirations) != sizeof expirations) {
        return;
    }
    // What becomes due while these run has its turn later, so that the event loop gets its own.
    const Deadline last(now(), lastNumber_);
    while (!calls_->empty() && calls_->begin()->first <= last) {
        const auto due = calls_->extract(calls_->begin());
        due.mapped()();
    }
    armTimer();
}

void QtMainQueue::armTimer() {
    if (calls_->empty()) {
        return;
    }
    const auto due = calls_->begin()->first.first;
    const auto whole = std::chrono::duration_cast<seconds>(due);
    const itimerspec time{{}, {whole.count(), (due - whole).count()}};
    timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &time, nullptr);
}

} // namespace vantrel
