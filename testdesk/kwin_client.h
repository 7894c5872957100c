#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct kde_output_configuration_v2;
struct kde_output_device_registry_v2;
struct kde_output_device_v2;
struct kde_output_management_v2;
struct org_kde_kwin_fake_input;
union wl_argument;
struct wl_display;
struct wl_message;
struct wl_proxy;

namespace vantrel::desktop {

// A client of KWin's own protocols, with synthetic input and with the displays. Each call but one
// waits until KWin has done it; all throw when it is gone.
class KWinClient {
public:
    // By the path of its socket. Throws when it does not offer that.
    explicit KWinClient(const std::string& socket);

    void moveTo(double x, double y) const;   // points of the desktop
    void sendTo(double x, double y) const;   // the same, without waiting
    void press(int button, bool down) const; // a code of Linux, as BTN_LEFT
    void type(int key, bool down) const;     // a code of Linux, as KEY_A

    // By the order in which they were made. One that is off counts as unplugged.
    void enableOutput(std::size_t output, bool on) const;
    void scaleOutput(std::size_t output, double scale) const;

private:
    struct Disconnect {
        void operator()(wl_display* display) const;
    };
    struct Destroy {
        void operator()(void* proxy) const;
    };
    template <typename T>
    using Proxy = std::unique_ptr<T, Destroy>;

    void add(kde_output_device_v2* output);
    static int keepMode(const void* implementation, void* output, std::uint32_t event,
                        const wl_message* signature, wl_argument* arguments);
    void sync() const;
    template <typename Change>
    void configure(Change change) const;

    std::unique_ptr<wl_display, Disconnect> display_;
    Proxy<org_kde_kwin_fake_input> input_;
    Proxy<kde_output_management_v2> management_;
    Proxy<kde_output_device_registry_v2> registry_; // of the outputs, from Plasma 6.7 on
    std::vector<Proxy<kde_output_device_v2>> outputs_;
    std::vector<Proxy<wl_proxy>> modes_; // of the outputs
};

} // namespace vantrel::desktop
