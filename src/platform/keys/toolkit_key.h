#pragma once

#include "platform/keys/key_layout.h"

#include <cstdint>

#include <QList>

namespace vantrel {

// What the toolkit calls a key while the modifiers of a shortcut are held: numbers of Qt::Key with
// those of Shift, where that is held, and of the numeric pad. A key of that pad has one for each
// state of Num Lock, the one with Num Lock first. None for a key that has no name here.
[[nodiscard]] QList<int> toolkitKeysOf(const KeyLayout& layout, std::uint32_t key,
                                       std::uint32_t modifiers, std::uint32_t layoutNumber);

} // namespace vantrel
