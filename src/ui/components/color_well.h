#pragma once

#include "ui/components/view_context.h"

#include <QColor>
#include <QPointer>
#include <QPushButton>

#include <memory>
#include <optional>

class QColorDialog;

namespace vantrel {

// Shows a colour, and opens the desktop's colour dialog on it. What is picked there takes effect at
// once, while it is still being dragged. Cancelling the dialog brings back the colour that it was
// opened on, or the one that was chosen elsewhere meanwhile.
class CustomColorWell : public QPushButton {
public:
    // Between a well, its dialog and the bound colour.
    struct Coordinator {
        Binding<EffectColor> color;
        // That passed between the well and the binding last.
        std::optional<EffectColor> lastChange;

        void colorChanged(const QColor& picked);
    };

    // The label is told to screen readers. A checked well carries a badge.
    CustomColorWell(ViewContext& view, const Binding<EffectColor>& color, const Wording& label);

    [[nodiscard]] QColor color() const { return color_; }
    // Null while there is none.
    [[nodiscard]] QColorDialog* dialog() const;
    void openDialog();

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {}

private:
    void follow();
    QColorDialog* makeDialog();

    ViewContext& view_;
    const Wording label_;
    std::shared_ptr<Coordinator> coordinator_;
    QColor color_;
    QPointer<QColorDialog> dialog_;
};

} // namespace vantrel
