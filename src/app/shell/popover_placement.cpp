#include "app/shell/popover_placement.h"

#include "platform/native_windows.h"

#include <QMargins>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int gap = 4;
constexpr int itemReach = 12;

// The start of a range of that length that lies in the other one, and is cut where it cannot.
int within(int start, int length, int low, int high) {
    return std::max(low, std::min(start, high - length));
}

} // namespace

QRect popoverPlacement(const QRect& item, QSize size, const QRect& available) {
    const QSize fitting = size.boundedTo(available.size());
    const int below = item.top() + item.height() + gap;
    const int above = item.top() - gap - fitting.height();
    const int bottom = available.top() + available.height();
    const int roomBelow = bottom - below;
    const int roomAbove = item.top() - gap - available.top();
    const bool opensBelow = roomBelow >= fitting.height() || roomBelow >= roomAbove;
    const QPoint corner(
        within(item.left() + (item.width() - fitting.width()) / 2, fitting.width(),
               available.left(), available.left() + available.width()),
        within(opensBelow ? below : above, fitting.height(), available.top(), bottom));
    return {corner, fitting};
}

EdgePlace edgePlace(const QRect& place, const QRect& area) {
    const int left = place.left() - area.left();
    const int right = area.right() - place.right();
    const int top = place.top() - area.top();
    const int bottom = area.bottom() - place.bottom();
    const auto fromBar = [](int distance) { return distance < barHeight ? gap : distance; };
    EdgePlace result;
    if (left < right) {
        result.edges |= Qt::LeftEdge;
        result.distance.setLeft(left);
    } else {
        result.edges |= Qt::RightEdge;
        result.distance.setRight(right);
    }
    if (top < bottom) {
        result.edges |= Qt::TopEdge;
        result.distance.setTop(fromBar(top));
    } else {
        result.edges |= Qt::BottomEdge;
        result.distance.setBottom(fromBar(bottom));
    }
    return result;
}

bool isOnTheWay(QPoint pointer, const QRect& item, const QRect& popover) {
    constexpr QMargins around(itemReach, itemReach, itemReach, itemReach);
    return item.marginsAdded(around).united(popover).contains(pointer);
}

} // namespace vantrel
