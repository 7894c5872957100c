#include "testdesk/headless/main_queue.h"

#include <algorithm>

namespace vantrel::headless {

void MainQueue::async(std::function<void()> call) {
    add(0, std::move(call));
}

Subscription MainQueue::after(double seconds, std::function<void()> call) {
    const auto turn = add(seconds, std::move(call));
    return Subscription([waiting = std::weak_ptr(calls_), turn] {
        if (const auto calls = waiting.lock()) {
            calls->erase(turn);
        }
    });
}

MainQueue::Turn MainQueue::add(double seconds, std::function<void()> call) {
    const Turn turn(clock_.uptime() + seconds, ++lastNumber_);
    calls_->emplace(turn, std::move(call));
    return turn;
}

void MainQueue::advance(double seconds) {
    const double end = clock_.uptime() + seconds;
    while (!calls_->empty() && calls_->begin()->first.first <= end) {
        const auto next = calls_->extract(calls_->begin());
        clock_.advanceTo(std::max(clock_.uptime(), next.key().first));
        next.mapped()();
    }
    clock_.advanceTo(end);
}

} // namespace vantrel::headless
