#include "platform/x11/property.h"

namespace vantrel::x11 {

namespace {

// Four bytes at a time, from there; null when it is not in that format.
Owned<xcb_get_property_reply_t> read(const Connection& connection, xcb_window_t window,
                                     Atom property, std::uint8_t format, std::uint32_t first,
                                     std::uint32_t count) {
    const auto cookie = xcb_get_property(connection.xcb(), 0, window, connection.atom(property),
                                         XCB_GET_PROPERTY_TYPE_ANY, first, count);
    Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection.xcb(), cookie, nullptr));
    return reply && reply->format == format ? std::move(reply) : nullptr;
}

} // namespace

std::string bytesOf(const Connection& connection, xcb_window_t window, Atom property) {
    constexpr std::uint32_t maximumWords = 1 << 18;
    const auto reply = read(connection, window, property, 8, 0, maximumWords);
    if (!reply) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::vector<std::uint32_t> numbersOf(const Connection& connection, xcb_window_t window,
                                     Atom property, std::uint32_t first, std::uint32_t count) {
    const auto reply = read(connection, window, property, 32, first, count);
    if (!reply) {
        return {};
    }
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

std::optional<std::uint32_t> numberOf(const Connection& connection, xcb_window_t window,
                                      Atom property) {
    const auto numbers = numbersOf(connection, window, property, 0, 1);
    return numbers.empty() ? std::nullopt : std::optional(numbers.front());
}

} // namespace vantrel::x11
