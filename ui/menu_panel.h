#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

namespace vantrel {

// What opens from the status item: the mode, and the few settings that it has.
class MenuPanel : public VantrelBackground {
public:
    explicit MenuPanel(ViewContext& view);
};

} // namespace vantrel
