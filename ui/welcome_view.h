#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

namespace vantrel {

// Introduces the effects, until it was dismissed once.
class WelcomeView : public VantrelBackground {
public:
    WelcomeView(ViewContext& view, const std::function<void()>& dismiss);
};

} // namespace vantrel
