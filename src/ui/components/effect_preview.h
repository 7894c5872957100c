#pragma once

#include "overlay/preview_canvas.h"
#include "ui/components/view_context.h"

#include <functional>

namespace vantrel {

struct EffectPreviewOptions {
    bool laser = false;
    bool interactive = true;
    int height = 100; // points
    // What is previewed instead of the preferences as they are.
    std::function<AppPreferences(AppPreferences)> variation;
};

// A preview canvas that follows the preferences.
class EffectPreview : public PreviewCanvas {
public:
    // A sample, of which screen readers are told nothing.
    EffectPreview(ViewContext& view, const EffectPreviewOptions& options);
    EffectPreview(ViewContext& view, const Wording& name, const EffectPreviewOptions& options);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantrel
