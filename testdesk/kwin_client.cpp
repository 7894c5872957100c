#include "testdesk/kwin_client.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include <wayland-fake-input.h>
#include <wayland-kde-output-device-v2.h>
#include <wayland-kde-output-management-v2.h>

namespace vantrel::desktop {

void KWinClient::Disconnect::operator()(wl_display* display) const {
    wl_display_disconnect(display);
}

void KWinClient::Destroy::operator()(void* proxy) const {
    wl_proxy_destroy(static_cast<wl_proxy*>(proxy));
}

KWinClient::KWinClient(const std::string& socket) : display_(wl_display_connect(socket.c_str())) {
    if (!display_) {
        throw std::runtime_error("no Wayland at " + socket);
    }
    const Proxy<wl_registry> registry(wl_display_get_registry(display_.get()));
    static constexpr kde_output_device_registry_v2_listener outputListener{
        .finished = [](void*, kde_output_device_registry_v2*) {},
        .output =
            [](void* data, kde_output_device_registry_v2*, kde_output_device_v2* output) {
                auto& self = *static_cast<KWinClient*>(data);
                self.add(output);
                // It names the latest first.
                std::rotate(self.outputs_.begin(), std::prev(self.outputs_.end()),
                            self.outputs_.end());
            }};
    const wl_registry_listener listener{
        .global =
            [](void* data, wl_registry* all, std::uint32_t name, const char* interface,
               std::uint32_t /*version*/) {
                auto& self = *static_cast<KWinClient*>(data);
                const auto bind = [&](const wl_interface& wanted, std::uint32_t version) {
                    return interface == std::string_view(wanted.name)
                               ? wl_registry_bind(all, name, &wanted, version)
                               : nullptr;
                };
                if (auto* input = bind(org_kde_kwin_fake_input_interface, 4)) {
                    self.input_.reset(static_cast<org_kde_kwin_fake_input*>(input));
                } else if (auto* management = bind(kde_output_management_v2_interface, 1)) {
                    self.management_.reset(static_cast<kde_output_management_v2*>(management));
                } else if (auto* output = bind(kde_output_device_v2_interface, 1)) {
                    self.add(static_cast<kde_output_device_v2*>(output));
                } else if (auto* outputs = bind(kde_output_device_registry_v2_interface, 21)) {
                    self.registry_.reset(static_cast<kde_output_device_registry_v2*>(outputs));
                    kde_output_device_registry_v2_add_listener(self.registry_.get(),
                                                               &outputListener, data);
                }
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(registry.get(), &listener, this);
    sync();
    if (!input_ || !management_) {
        throw std::runtime_error("KWin takes no synthetic input");
    }
    org_kde_kwin_fake_input_authenticate(input_.get(), "test", "test");
    sync();
}

void KWinClient::add(kde_output_device_v2* output) {
    wl_proxy_add_dispatcher(reinterpret_cast<wl_proxy*>(output), keepMode, nullptr, this);
    outputs_.emplace_back(output);
}

// Of what an output tells, only its modes have to be kept.
int KWinClient::keepMode(const void* /*implementation*/, void* output, std::uint32_t event,
                         const wl_message* /*signature*/, wl_argument* arguments) {
    constexpr std::uint32_t mode = 2;
    if (event == mode) {
        auto* self = wl_proxy_get_user_data(static_cast<wl_proxy*>(output));
        static_cast<KWinClient*>(self)->modes_.emplace_back(
            reinterpret_cast<wl_proxy*>(arguments[0].o));
    }
    return 0;
}

void KWinClient::moveTo(double x, double y) const {
    sendTo(x, y);
    sync();
}

void KWinClient::sendTo(double x, double y) const {
    org_kde_kwin_fake_input_pointer_motion_absolute(input_.get(), wl_fixed_from_double(x),
                                                    wl_fixed_from_double(y));
    wl_display_flush(display_.get());
}

void KWinClient::press(int button, bool down) const {
    org_kde_kwin_fake_input_button(input_.get(), static_cast<std::uint32_t>(button), down ? 1 : 0);
    sync();
}

void KWinClient::type(int key, bool down) const {
    org_kde_kwin_fake_input_keyboard_key(input_.get(), static_cast<std::uint32_t>(key),
                                         down ? 1 : 0);
    sync();
}

void KWinClient::enableOutput(std::size_t output, bool on) const {
    configure([&](auto* configuration) {
        kde_output_configuration_v2_enable(configuration, outputs_.at(output).get(), on ? 1 : 0);
    });
}

void KWinClient::scaleOutput(std::size_t output, double scale) const {
    configure([&](auto* configuration) {
        kde_output_configuration_v2_scale(configuration, outputs_.at(output).get(),
                                          wl_fixed_from_double(scale));
    });
}

template <typename Change>
void KWinClient::configure(Change change) const {
    enum Answer { none, applied, failed };
    Answer answer = none;
    const kde_output_configuration_v2_listener listener{
        .applied = [](void* data,
                      kde_output_configuration_v2*) { *static_cast<Answer*>(data) = applied; },
        .failed = [](void* data,
                     kde_output_configuration_v2*) { *static_cast<Answer*>(data) = failed; }};
    auto* configuration = kde_output_management_v2_create_configuration(management_.get());
    kde_output_configuration_v2_add_listener(configuration, &listener, &answer);
    change(configuration);
    kde_output_configuration_v2_apply(configuration);
    while (answer == none && wl_display_dispatch(display_.get()) >= 0) {
    }
    kde_output_configuration_v2_destroy(configuration);
    if (answer != applied) {
        throw std::runtime_error("KWin does not set its displays so");
    }
}

void KWinClient::sync() const {
    if (wl_display_roundtrip(display_.get()) < 0) {
        throw std::runtime_error("KWin is gone");
    }
}

} // namespace vantrel::desktop
