#pragma once

#include "platform/input.h"
#include "testdesk/headless/faults.h"

#include <functional>
#include <utility>
#include <vector>

namespace vantrel::headless {

// A key with its modifiers, as it is registered.
struct Combination {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;

    bool operator==(const Combination&) const = default;
};

class HotKeys final : public vantrel::HotKeys {
public:
    explicit HotKeys(Faults& faults) : faults_(faults) {}
    ~HotKeys() override;
    HotKeys(const HotKeys&) = delete;
    HotKeys& operator=(const HotKeys&) = delete;

    void setHandler(std::function<void(HotKeyId)> handler) override;
    void setLossHandler(std::function<void()> handler) override {
        lossHandler_ = std::move(handler);
    }
    std::optional<Ref> register_(std::uint32_t keyCode, std::uint32_t modifiers,
                                 HotKeyId id) override;
    void unregister(Ref ref) override;
    void leaveKeys(bool left) override { keysAreLeft = left; }
    [[nodiscard]] bool canLeaveKeys() const override { return keysCanBeLeft; }

    // As if another program had taken it.
    void lose(const Combination& combination);
    // Whether the press went to the program rather than to the application in front.
    bool press(const Combination& combination);

    // In the order of registration.
    [[nodiscard]] std::vector<Combination> registered() const;

    std::vector<Combination> heldByOthers;
    bool keysAreLeft = false;
    bool keysCanBeLeft = true;

private:
    struct Registration {
        Ref ref = 0;
        Combination combination;
        HotKeyId id;
    };

    Faults& faults_;
    std::function<void(HotKeyId)> handler_;
    std::function<void()> lossHandler_;
    std::vector<Registration> registrations_;
    Ref lastRef_ = 0;
};

} // namespace vantrel::headless
