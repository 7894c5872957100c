#pragma once

#include "ui/components/buttons.h"

#include <optional>

namespace vantrel {

// A row that leads somewhere, across its whole width.
class ActionRow : public PlainButton {
public:
    ActionRow(ViewContext& view, const Wording& title, std::string_view symbol,
              const std::optional<Wording>& subtitle, const std::function<void()>& action);
};

} // namespace vantrel
