#pragma once

#include "platform/effect.h"

#include <QVariantMap>

namespace vantrel {

// An effect as the shell's extension takes it, and back.
[[nodiscard]] QVariantMap messageOf(const Effect& effect);
[[nodiscard]] Effect effectIn(const QVariantMap& message);

} // namespace vantrel
