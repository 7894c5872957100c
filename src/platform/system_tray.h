#pragma once

#include "platform/subscription.h"

#include <functional>

namespace vantrel {

// The tray of a desktop that takes icons in as windows.
class SystemTray {
public:
    virtual ~SystemTray() = default;

    [[nodiscard]] virtual bool present() const = 0;
    [[nodiscard]] virtual Subscription onChange(std::function<void()> callback) = 0;
};

} // namespace vantrel
