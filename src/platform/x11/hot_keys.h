#pragma once

#include "platform/input.h"
#include "platform/x11/key_grab.h"
#include "platform/x11/modifier_map.h"

#include <QTimer>

#include <vector>

namespace vantrel::x11 {

// Key combinations that are grabbed on the root window; no other key is seen, but those that are
// pressed while the key of one is held: the server keeps the whole keyboard here until that comes
// up, and so the window in front is told neither of the press nor of its end. Combinations cannot
// be had while another program has grabbed the whole keyboard, as an open menu does.
//
// Every change of a preference unregisters the shortcuts and registers them again. So a grab
// outlives its registration until the events at hand are handled: a registration of the same
// combination that comes before takes it over, and the server is not asked.
class X11HotKeys final : public HotKeys, private EventHandler {
public:
    // An event dispatcher must exist, as it does once the application object does.
    explicit X11HotKeys(Connection& connection);

    void setHandler(std::function<void(HotKeyId)> handler) override;
    void setLossHandler(std::function<void()> handler) override;
    std::optional<Ref> register_(std::uint32_t keyCode, std::uint32_t modifiers,
                                 HotKeyId id) override;
    void unregister(Ref ref) override;
    // A window does that itself, by a grab of the keyboard.
    void leaveKeys(bool /*left*/) override {}
    [[nodiscard]] bool canLeaveKeys() const override { return !connection_.isXwayland(); }

private:
    struct Registration {
        KeyCombination combination;
        std::uint32_t modifiers = 0; // as they were given
        std::optional<KeyGrab> grab; // none while another program has what a new mapping made of it
        Ref ref = 0;                 // 0 once it was unregistered
        HotKeyId id;
    };

    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void notePress(const xcb_generic_event_t& event);
    void deliverPresses();
    void releaseUnregistered();
    void followMapping();
    void reportLoss();
    Registration* find(KeyCombination combination);

    Connection& connection_;
    ModifierMap map_;
    std::function<void(HotKeyId)> handler_;
    std::function<void()> lossHandler_;
    std::vector<Registration> registrations_;
    Ref lastRef_ = 0;
    std::vector<KeyCombination> pressed_; // not delivered yet
    bool mappingChanged_ = false;
    QTimer release_;
    QTimer retry_; // after a loss, a few times
    Subscription events_;
};

} // namespace vantrel::x11
