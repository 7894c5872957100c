#pragma once

#include "platform/freedesktop/key_grabber.h"
#include "platform/input.h"

#include <QTimer>

#include <optional>

namespace vantrel {

// Key combinations that the session takes in whatever window, as long as there is what does so, and
// other hot keys otherwise. Whoever has registered some is told to do so again when that changes.
// What the session refuses is known only afterwards: then too.
class SessionHotKeys final : public HotKeys {
public:
    // The key's number on this keyboard, by its virtual key code.
    using Keycode = std::function<std::optional<std::uint8_t>(std::uint32_t keyCode)>;

    // The others and the grabber, which is this one's alone, must outlive it.
    SessionHotKeys(KeyGrabber& grabber, HotKeys& others, Keycode keycodeOf);

    void setHandler(std::function<void(HotKeyId)> handler) override;
    void setLossHandler(std::function<void()> handler) override;
    std::optional<Ref> register_(std::uint32_t keyCode, std::uint32_t modifiers,
                                 HotKeyId id) override;
    void unregister(Ref ref) override;
    void leaveKeys(bool left) override;
    [[nodiscard]] bool canLeaveKeys() const override;

private:
    struct Registration {
        Ref ref = 0;
        HotKeyId id;
        std::optional<KeyCombination> keys{}; // of the session's
        std::optional<Ref> others{};          // of the others'
    };

    void grab();
    void take(std::uint32_t number);
    void takeRefusal(const std::vector<std::uint32_t>& numbers);
    void follow();
    void reportLoss() const;

    KeyGrabber& grabber_;
    HotKeys& others_;
    Keycode keycodeOf_;
    std::function<void(HotKeyId)> handler_;
    std::function<void()> lossHandler_;
    std::vector<Registration> registrations_;
    Ref lastRef_ = 0;
    bool inSession_ = false;
    std::vector<KeyCombination> refused_; // and not to be asked for again while they are registered
    std::vector<KeyCombination> wanted_;  // of those, since the last grab
    QTimer grab_;
    Subscription changes_;
};

} // namespace vantrel
