#include "testdesk/kwin_input.h"

#include <array>
#include <stdexcept>
#include <string_view>

#include <wayland-client.h>

namespace vantrel::desktop {
namespace {

// org_kde_kwin_fake_input, as far as version 4. Of the requests that are not sent only the number
// counts.
constexpr std::uint32_t version = 4;
enum Request : std::uint32_t { authenticate = 0, button = 2, motionAbsolute = 9, key = 10 };
constexpr int requestCount = 11;

const wl_interface& inputInterface() {
    static std::array<const wl_interface*, 2> noObjects{};
    static const auto requests = [] {
        std::array<wl_message, requestCount> all{};
        all.fill({"", "", noObjects.data()});
        all[authenticate] = {"authenticate", "ss", noObjects.data()};
        all[button] = {"button", "uu", noObjects.data()};
        all[motionAbsolute] = {"pointer_motion_absolute", "3ff", noObjects.data()};
        all[key] = {"keyboard_key", "4uu", noObjects.data()};
        return all;
    }();
    static const wl_interface interface {
        "org_kde_kwin_fake_input", version, requestCount, requests.data(), 0, nullptr
    };
    return interface;
}

} // namespace

void KWinInput::Disconnect::operator()(wl_display* display) const {
    wl_display_disconnect(display);
}

void KWinInput::Destroy::operator()(wl_proxy* proxy) const {
    wl_proxy_destroy(proxy);
}

KWinInput::KWinInput(const std::string& socket) : display_(wl_display_connect(socket.c_str())) {
    if (!display_) {
        throw std::runtime_error("no Wayland at " + socket);
    }
    auto* registry = wl_display_get_registry(display_.get());
    registry_.reset(reinterpret_cast<wl_proxy*>(registry));
    const wl_registry_listener listener{
        .global =
            [](void* self, wl_registry* all, std::uint32_t name, const char* interface,
               std::uint32_t /*version*/) {
                if (interface == std::string_view(inputInterface().name)) {
                    static_cast<KWinInput*>(self)->input_.reset(static_cast<wl_proxy*>(
                        wl_registry_bind(all, name, &inputInterface(), version)));
                }
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(registry, &listener, this);
    sync();
    if (!input_) {
        throw std::runtime_error("KWin takes no synthetic input");
    }
    wl_proxy_marshal(input_.get(), authenticate, "test", "test");
    sync();
}

void KWinInput::moveTo(double x, double y) const {
    wl_proxy_marshal(input_.get(), motionAbsolute, wl_fixed_from_double(x),
                     wl_fixed_from_double(y));
    sync();
}

void KWinInput::press(int number, bool down) const {
    wl_proxy_marshal(input_.get(), button, number, down ? 1 : 0);
    sync();
}

void KWinInput::type(int number, bool down) const {
    wl_proxy_marshal(input_.get(), key, number, down ? 1 : 0);
    sync();
}

void KWinInput::sync() const {
    if (wl_display_roundtrip(display_.get()) < 0) {
        throw std::runtime_error("KWin is gone");
    }
}

} // namespace vantrel::desktop
