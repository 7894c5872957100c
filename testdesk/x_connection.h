#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <xcb/xcb.h>

namespace vantrel::desktop {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

template <typename T>
Reply<T> ownReply(T* reply) {
    return Reply<T>(reply);
}

// A place on the screen in pixels, y downward from its top-left corner.
struct PixelPoint {
    int x = 0;
    int y = 0;

    bool operator==(const PixelPoint&) const = default;
};

struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect&) const = default;
};

// A connection to a display, closed with it.
class XConnection {
public:
    explicit XConnection(const std::string& display); // throws when there is none

    [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] bool failed() const { return xcb_connection_has_error(get()) != 0; }

    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
    // The 32-bit values of a property; empty when it is not there.
    [[nodiscard]] std::vector<std::uint32_t> property(xcb_window_t window,
                                                      const std::string& name) const;
    // The bytes of a property; empty when it is not there.
    [[nodiscard]] std::string text(xcb_window_t window, const std::string& name) const;
    [[nodiscard]] std::string atomName(xcb_atom_t atom) const;
    // The first number of an extension's requests.
    [[nodiscard]] std::optional<std::uint8_t> majorOpcode(const std::string& extension) const;
    // The visual with an alpha channel.
    [[nodiscard]] xcb_visualid_t translucentVisual() const;
    // Returns when the server has carried out everything sent before.
    void sync() const;
    [[nodiscard]] PixelPoint pointer() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    const xcb_screen_t* screen_ = nullptr;
};

} // namespace vantrel::desktop
