#pragma once

#include "platform/shell.h"
#include "platform/x11/connection.h"

namespace vantrel::x11 {

// Whoever owns the selection of the system tray protocol.
class X11SystemTray final : public SystemTray, private EventHandler {
public:
    explicit X11SystemTray(Connection& connection);

    [[nodiscard]] bool present() const override { return present_; }
    [[nodiscard]] Subscription onChange(std::function<void()> callback) override {
        return changes_.add(std::move(callback));
    }

private:
    void handleEvent(const xcb_generic_event_t& event) override;

    Connection& connection_;
    bool present_ = false;
    Observers<> changes_;
    Subscription events_;
};

} // namespace vantrel::x11
