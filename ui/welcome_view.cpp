#include "ui/welcome_view.h"

#include "ui/components/mode_choices.h"
#include "ui/components/stack.h"

namespace vantrel {

WelcomeView::WelcomeView(ViewContext& view, const std::function<void()>& /*dismiss*/)
    : VantrelBackground(column(12, {modeChoices(view, true), spacer()})->padded(16)) {}

} // namespace vantrel
