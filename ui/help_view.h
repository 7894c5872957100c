#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

namespace vantrel {

// How to use the program, and where to read more.
class HelpView : public VantrelBackground {
public:
    explicit HelpView(ViewContext& view);
};

} // namespace vantrel
