#include "ui/components/action_row.h"

#include "ui/components/accessibility.h"
#include "ui/components/label.h"
#include "ui/components/pictogram.h"
#include "ui/components/stack.h"

namespace vantrel {

namespace {

QWidget* face(ViewContext& view, const Wording& title, std::string_view symbol,
              const std::optional<Wording>& subtitle) {
    auto* texts = column(
        3, {label(view, title, {13, QFont::Medium}),
            subtitle ? label(view, *subtitle, captionText.toned(Tone::secondary)) : nullptr});
    auto* picture = row(0, {new Symbol(symbol, 17, Tone::blue)});
    picture->setFixedWidth(24);
    return row(12, {picture, texts, spacer(), new Symbol("chevron.right", 10, Tone::tertiary)})
        ->padded(0, 5);
}

} // namespace

ActionRow::ActionRow(ViewContext& view, const Wording& title, std::string_view symbol,
                     const std::optional<Wording>& subtitle, const std::function<void()>& action)
    : PlainButton(view, title, action, face(view, title, symbol, subtitle)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    if (subtitle) {
        describeForScreenReaders(view, this, *subtitle);
    }
}

} // namespace vantrel
