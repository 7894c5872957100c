#pragma once

#include "ui/components/style.h"
#include "ui/components/view_context.h"

#include <QHash>
#include <QLabel>

class QTimer;

namespace vantrel {

// A text in a style, which follows the language and the palette. A single line is as high as one of
// its own font, whatever font the desktop has for the letters that this one lacks. Screen readers
// are told of a heading where it is as large as a title.
class Label : public QLabel {
public:
    Label(ViewContext& view, const Wording& wording, const TextStyle& style = bodyText);

    void setTone(Tone tone);
    // Takes as many lines as it needs.
    Label* wrapping();
    Label* centered();
    // Screen readers say it when it comes up, and when it says something else then. Before Qt 6.8
    // no program can have them do so.
    Label* announced();
    // The label with a pictogram before it.
    QWidget* beside(std::string_view symbol, Tone symbolTone);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void tint();
    void announce() const;
    [[nodiscard]] QSize ofOneLine(QSize hint) const;

    TextStyle style_;
    QTimer* announcement_ = nullptr; // of one that is announced, if it can be
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
