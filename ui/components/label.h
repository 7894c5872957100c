#pragma once

#include "ui/components/style.h"
#include "ui/components/view_context.h"

#include <QHash>
#include <QLabel>

namespace vantrel {

// A text in a style, which follows the language and the palette.
class Label : public QLabel {
public:
    Label(ViewContext& view, const Wording& wording, const TextStyle& style = bodyText);

    void setTone(Tone tone);
    // Takes as many lines as it needs.
    Label* wrapping();
    Label* centered();

    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void tint();

    TextStyle style_;
    // Of the text as it is: nested layouts ask for the same few again and again, and each answer
    // takes laying the text out.
    mutable QHash<int, int> heights_;
};

// One line, and as many lines as it needs.
[[nodiscard]] Label* label(ViewContext& view, const Wording& wording,
                           const TextStyle& style = bodyText);
[[nodiscard]] Label* paragraph(ViewContext& view, const Wording& wording,
                               const TextStyle& style = bodyText);
// A pictogram and a text that wraps beside it.
[[nodiscard]] QWidget* symbolLabel(ViewContext& view, std::string_view symbol, Tone symbolTone,
                                   const Wording& wording, const TextStyle& style = bodyText);

} // namespace vantrel
