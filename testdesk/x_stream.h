#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace vantrel::desktop {

using Message = std::span<const std::uint8_t>;

// Cuts the bytes of one direction of an X connection into messages, the greeting included. Both
// ends are of this machine's byte order.
class XStream {
public:
    enum class Direction { toServer, toClient };
    using Handler = std::function<void(Message)>;

    XStream(Direction direction, Handler handler);

    void feed(Message bytes);

private:
    [[nodiscard]] std::size_t nextLength(Message rest) const;

    Direction direction_;
    Handler handler_;
    std::vector<std::uint8_t> pending_;
    bool greeted_ = false;
};

[[nodiscard]] std::uint16_t read16(Message message, std::size_t offset);
[[nodiscard]] std::uint32_t read32(Message message, std::size_t offset);
[[nodiscard]] std::uint64_t read64(Message message, std::size_t offset);

} // namespace vantrel::desktop
