#include "ui/help_view.h"

#include "ui/components/mode_choices.h"
#include "ui/components/stack.h"

namespace vantrel {

HelpView::HelpView(ViewContext& view)
    : VantrelBackground(column(12, {modeChoices(view, true), spacer()})->padded(16)) {}

} // namespace vantrel
