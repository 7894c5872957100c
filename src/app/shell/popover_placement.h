#pragma once

#include "platform/shell.h"

#include <QRect>

namespace vantrel {

// Where a popover of that size opens for an item: below it, or above where there is more room, and
// wholly within the available part of the item's screen. All in the coordinates of the toolkit's
// windows. An item that is no larger than a point is a place near an item.
[[nodiscard]] QRect popoverPlacement(const QRect& item, QSize size, const QRect& available);

// The same place as seen from the nearest edges of that area, where an item lies in a bar of
// unknown height.
[[nodiscard]] EdgePlace edgePlace(const QRect& place, const QRect& area);

// What the pointer passes on its way between an item and its popover: both, what is between them,
// and a little around the item, as the place of one may be known by a point only.
[[nodiscard]] bool isOnTheWay(QPoint pointer, const QRect& item, const QRect& popover);

} // namespace vantrel
