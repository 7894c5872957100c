#include "testdesk/x_stream.h"

#include <cstring>
#include <utility>

#include <xcb/xproto.h>

namespace vantrel::desktop {
namespace {

template <typename T>
T readAs(Message message, std::size_t offset) {
    T value{};
    std::memcpy(&value, message.subspan(offset, sizeof(T)).data(), sizeof(T));
    return value;
}

std::size_t padded(std::size_t length) {
    return (length + 3) / 4 * 4;
}

// How long the message is that starts here; 0 while too little of it is there to tell.
std::size_t clientGreeting(Message rest) {
    return rest.size() < 12 ? 0 : 12 + padded(read16(rest, 6)) + padded(read16(rest, 8));
}

std::size_t serverGreeting(Message rest) {
    return rest.size() < 8 ? 0 : 8 + 4 * std::size_t{read16(rest, 6)};
}

std::size_t request(Message rest) {
    if (rest.size() < 4) {
        return 0;
    }
    if (const std::size_t words = read16(rest, 2)) {
        return 4 * words;
    }
    return rest.size() < 8 ? 0 : 4 * std::size_t{read32(rest, 4)};
}

std::size_t replyOrEvent(Message rest) {
    if (rest.size() < 32) {
        return 0;
    }
    const int type = rest[0] & 0x7F;
    const bool mayBeLonger = rest[0] == 1 || type == XCB_GE_GENERIC;
    return 32 + (mayBeLonger ? 4 * std::size_t{read32(rest, 4)} : 0);
}

} // namespace

std::uint16_t read16(Message message, std::size_t offset) {
    return readAs<std::uint16_t>(message, offset);
}

std::uint32_t read32(Message message, std::size_t offset) {
    return readAs<std::uint32_t>(message, offset);
}

std::uint64_t read64(Message message, std::size_t offset) {
    return readAs<std::uint64_t>(message, offset);
}

XStream::XStream(Direction direction, Handler handler)
    : direction_(direction), handler_(std::move(handler)) {}

void XStream::feed(Message bytes) {
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
    Message rest(pending_);
    for (std::size_t length = nextLength(rest); length != 0 && length <= rest.size();
         length = nextLength(rest)) {
        if (greeted_) {
            handler_(rest.first(length));
        }
        greeted_ = true;
        rest = rest.subspan(length);
    }
    pending_.erase(pending_.begin(), pending_.end() - static_cast<std::ptrdiff_t>(rest.size()));
}

std::size_t XStream::nextLength(Message rest) const {
    if (direction_ == Direction::toServer) {
        return greeted_ ? request(rest) : clientGreeting(rest);
    }
    return greeted_ ? replyOrEvent(rest) : serverGreeting(rest);
}

} // namespace vantrel::desktop
