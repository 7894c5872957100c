#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

namespace vantrel {

// Every preference, in five tabs.
class SettingsView : public VantrelBackground {
public:
    explicit SettingsView(ViewContext& view);
};

} // namespace vantrel
