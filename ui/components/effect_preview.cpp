#include "ui/components/effect_preview.h"

#include "ui/components/accessibility.h"

namespace vantrel {

PreviewCanvas* effectPreview(ViewContext& view, const EffectPreviewOptions& options) {
    auto* canvas = new PreviewCanvas(view.desktop().clock, view.desktop().cursors);
    canvas->setFixedHeight(options.height);
    canvas->setLaser(options.laser);
    canvas->setInteractive(options.interactive);
    view.follow(canvas, [canvas, &view, variation = options.variation] {
        canvas->setPreferences(variation ? variation(view.preferences()) : view.preferences());
    });
    return canvas;
}

PreviewCanvas* effectPreview(ViewContext& view, const Wording& name,
                             const EffectPreviewOptions& options) {
    auto* canvas = effectPreview(view, options);
    setAccessibleRole(canvas, QAccessible::Graphic);
    view.follow(canvas, [canvas, &view, name] { canvas->setAccessibleName(view.say(name)); });
    return canvas;
}

} // namespace vantrel
