#pragma once

#include "overlay/preview_canvas.h"
#include "ui/components/view_context.h"

#include <functional>

namespace vantrel {

// A preview canvas that follows the preferences.
struct EffectPreviewOptions {
    bool laser = false;
    bool interactive = true;
    int height = 100; // points
    // What is previewed instead of the preferences as they are.
    std::function<AppPreferences(AppPreferences)> variation;
};

[[nodiscard]] PreviewCanvas* effectPreview(ViewContext& view, const EffectPreviewOptions& options);
// With a name for screen readers.
[[nodiscard]] PreviewCanvas* effectPreview(ViewContext& view, const Wording& name,
                                           const EffectPreviewOptions& options);

} // namespace vantrel
