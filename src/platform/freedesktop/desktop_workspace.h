#pragma once

#include "platform/freedesktop/login_manager.h"
#include "platform/session.h"

namespace vantrel {

// The workspace of a freedesktop session: URLs go to the program that the desktop has chosen for
// them, sleep and wake come from the login manager.
class DesktopWorkspace final : public Workspace {
public:
    bool openUrl(const std::string& url) override;
    [[nodiscard]] Subscription onWillSleep(std::function<void()> callback) override;
    [[nodiscard]] Subscription onDidWake(std::function<void()> callback) override;
    // The machine goes down, or restarts, after every callback returned, as far as it can be held.
    [[nodiscard]] Subscription onWillShutDown(std::function<void()> callback);

private:
    LoginManager loginManager_;
};

} // namespace vantrel
