#pragma once

#include "platform/subscription.h"

#include <functional>
#include <string>

namespace vantrel {

// The user's session around the application.
class Workspace {
public:
    virtual ~Workspace() = default;

    // False when the desktop has nothing that opens it.
    virtual bool openUrl(const std::string& url) = 0;
    // The machine sleeps only after every callback returned, as far as it can be held.
    [[nodiscard]] virtual Subscription onWillSleep(std::function<void()> callback) = 0;
    [[nodiscard]] virtual Subscription onDidWake(std::function<void()> callback) = 0;
};

} // namespace vantrel
