#include "ui/components/effect_preview.h"

#include "ui/components/accessibility.h"
#include "ui/components/style.h"

#include <QPainter>

namespace vantrel {

EffectPreview::EffectPreview(ViewContext& view, const EffectPreviewOptions& options)
    : PreviewCanvas(view.desktop().clock, view.desktop().cursors) {
    setFixedHeight(options.height);
    setLaser(options.laser);
    setInteractive(options.interactive);
    view.follow(this, [this, &view, variation = options.variation] {
        setPreferences(variation ? variation(view.preferences()) : view.preferences());
    });
}

EffectPreview::EffectPreview(ViewContext& view, const Wording& name,
                             const EffectPreviewOptions& options)
    : EffectPreview(view, options) {
    setAccessibleRole(this, QAccessible::Graphic);
    nameForScreenReaders(view, this, name);
}

// On many dark desktops the canvas has nearly the colour of the card that it lies on.
void EffectPreview::paintEvent(QPaintEvent* event) {
    PreviewCanvas::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawChrome(painter, palette(), rect(),
               {.outline = {Tone::primary, isDark(palette()) ? 0.2 : 0.1}});
}

} // namespace vantrel
