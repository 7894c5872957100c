#pragma once

#include "platform/effect.h"
#include "preferences/preferences.h"

#include <QColor>

namespace vantrel {

[[nodiscard]] Effect effectOf(CursorMode mode, const AppPreferences& preferences);

// The ring of a style other than none.
[[nodiscard]] ClickRing clickRing(ClickStyle style, const QColor& color);

// sRGB with alpha 1.
[[nodiscard]] QColor toQColor(const EffectColor& color);

} // namespace vantrel
