#pragma once

#include "platform/effect.h"

#include <QVariantMap>

namespace vantrel {

// An effect as the shell's extension takes it.
[[nodiscard]] QVariantMap messageOf(const Effect& effect);

} // namespace vantrel
