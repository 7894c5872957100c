#include "ui/menu_panel.h"

#include "ui/components/mode_choices.h"
#include "ui/components/stack.h"

namespace vantrel {

MenuPanel::MenuPanel(ViewContext& view)
    : VantrelBackground(column(12, {modeChoices(view, true), spacer()})->padded(16)) {}

} // namespace vantrel
