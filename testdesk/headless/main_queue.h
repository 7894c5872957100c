#pragma once

#include "platform/time.h"
#include "testdesk/headless/clock.h"

#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace vantrel::headless {

class MainQueue final : public vantrel::MainQueue {
public:
    explicit MainQueue(Clock& clock) : clock_(clock) {}

    void async(std::function<void()> call) override;
    Subscription after(double seconds, std::function<void()> call) override;

    // Makes the calls that are due, and those that become due by them.
    void run() { advance(0); }
    // Time goes on, and every call is made at its own.
    void advance(double seconds);

    [[nodiscard]] std::size_t waiting() const { return calls_->size(); }

private:
    using Turn = std::pair<double, std::uint64_t>; // uptime, and a number that keeps the order
    using Calls = std::map<Turn, std::function<void()>>;

    Turn add(double seconds, std::function<void()> call);

    Clock& clock_;
    std::shared_ptr<Calls> calls_ = std::make_shared<Calls>();
    std::uint64_t lastNumber_ = 0;
};

} // namespace vantrel::headless
