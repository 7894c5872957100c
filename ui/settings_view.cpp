#include "ui/settings_view.h"

#include "ui/components/mode_choices.h"
#include "ui/components/stack.h"

namespace vantrel {

SettingsView::SettingsView(ViewContext& view)
    : VantrelBackground(column(12, {modeChoices(view, true), spacer()})->padded(16)) {}

} // namespace vantrel
