#pragma once

#include "platform/keys/key_layout.h"

#include <cstdint>

#include <QList>

namespace vantrel {

// What the toolkit calls a key, with Shift where that is held: numbers of Qt::Key with those of
// Shift and of the numeric pad. A key of that pad has one for each state of Num Lock, the one with
// Num Lock first. None for a key that has no name here.
[[nodiscard]] QList<int> toolkitKeysOf(const KeyLayout& layout, std::uint32_t key, bool withShift,
                                       std::uint32_t layoutNumber);

} // namespace vantrel
