#pragma once

#include <QRect>

namespace vantrel {

// Where a popover of that size opens for an item: below it, or above where there is more room, and
// wholly within the available part of the item's screen. All in the coordinates of the toolkit's
// windows. An item that is no larger than a point is a place near an item.
[[nodiscard]] QRect popoverPlacement(const QRect& item, QSize size, const QRect& available);

} // namespace vantrel
