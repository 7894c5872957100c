#pragma once

#include "ui/components/stack.h"
#include "ui/components/view_context.h"

namespace vantrel {

struct ValueScale {
    Range range;
    std::string_view suffix;
    bool percent = false; // the value is a fraction, shown in hundredths

    // As it is shown: a whole number, with halves away from zero.
    [[nodiscard]] long shown(double value) const;
    [[nodiscard]] QString text(double value) const;
};

// A title, the value, and a slider for it without steps.
class ValueSlider : public Stack {
public:
    ValueSlider(ViewContext& view, const Wording& title, const Binding<double>& value,
                const ValueScale& scale);
};

} // namespace vantrel
