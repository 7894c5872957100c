#pragma once

#include "platform/freedesktop/unique_descriptor.h"
#include "platform/time.h"

#include <QSocketNotifier>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace vantrel {

// The main queue on Qt's event loop. Calls that are still waiting when it is destroyed are dropped;
// it is not destroyed from inside one of them.
class QtMainQueue final : public MainQueue {
public:
    QtMainQueue();

    void async(std::function<void()> call) override;
    // Seconds that are no number, or below zero, count as zero.
    [[nodiscard]] Subscription after(double seconds, std::function<void()> call) override;

private:
    // When a call is due, and a number that tells those of one moment apart, in their order.
    using Deadline = std::pair<std::chrono::nanoseconds, std::uint64_t>;
    using Calls = std::map<Deadline, std::function<void()>>;

    Deadline schedule(double seconds, std::function<void()> call);
    void runDue();
    void armTimer();

    std::shared_ptr<Calls> calls_ = std::make_shared<Calls>();
    std::uint64_t lastNumber_ = 0;
    UniqueDescriptor timer_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace vantrel
