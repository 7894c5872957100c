#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

namespace vantrel {

class ScrollView;

// How to use the program, and where to read more.
class HelpView : public VantrelBackground {
public:
    explicit HelpView(ViewContext& view);

private:
    HelpView(ViewContext& view, ScrollView* text);
};

} // namespace vantrel
