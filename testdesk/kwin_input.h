#pragma once

#include <memory>
#include <string>

struct wl_display;
struct wl_proxy;

namespace vantrel::desktop {

// Synthetic input for KWin, over its own protocol for that.
class KWinInput {
public:
    // By the path of its socket. Throws when it does not offer that.
    explicit KWinInput(const std::string& socket);

    void moveTo(double x, double y) const;   // points of the desktop
    void press(int button, bool down) const; // a code of Linux, as BTN_LEFT
    void type(int key, bool down) const;     // a code of Linux, as KEY_A

private:
    struct Disconnect {
        void operator()(wl_display* display) const;
    };
    struct Destroy {
        void operator()(wl_proxy* proxy) const;
    };

    void sync() const;

    std::unique_ptr<wl_display, Disconnect> display_;
    std::unique_ptr<wl_proxy, Destroy> registry_;
    std::unique_ptr<wl_proxy, Destroy> input_;
};

} // namespace vantrel::desktop
