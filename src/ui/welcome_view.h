#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

#include <string_view>

class QPushButton;

namespace vantrel {

// In the user defaults: true once the welcome window was dismissed.
inline constexpr std::string_view welcomeDismissedKey = "welcomeDismissed";

// Introduces the effects, until it was dismissed once. Enter dismisses it.
class WelcomeView : public VantrelBackground {
public:
    WelcomeView(ViewContext& view, const std::function<void()>& dismiss);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    WelcomeView(ViewContext& view, QPushButton* start);

    QPushButton* start_;
};

} // namespace vantrel
