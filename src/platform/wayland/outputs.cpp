#include "platform/wayland/outputs.h"

#include "platform/wayland/listener.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <wayland-client.h>
#include <wayland-xdg-output.h>

namespace vantrel::wayland {

double OutputState::scale() const {
    // Compositors count scales in parts of 120, and round the size that these lead to.
    constexpr double parts = 120;
    return size.isEmpty() ? 1 : std::round(pixels.width() * parts / size.width()) / parts;
}

std::vector<Screen> toScreens(const std::vector<OutputState>& outputs) {
    std::vector<Screen> screens;
    for (const auto& output : outputs) {
        const auto& primary = outputs.front();
        const QPoint corner = output.place - primary.place;
        const GlobalRect frame{
            static_cast<double>(corner.x()),
            static_cast<double>(primary.size.height() - corner.y() - output.size.height()),
            static_cast<double>(output.size.width()), static_cast<double>(output.size.height())};
        screens.push_back({.id = output.id,
                           .frame = frame,
                           .visibleFrame = frame,
                           .backingScale = output.scale(),
                           .maximumFramesPerSecond = output.rate});
    }
    return screens;
}

GlobalPoint toGlobal(QPoint pixel, const Screen& screen) {
    return {screen.frame.minX() + pixel.x() / screen.backingScale,
            screen.frame.maxY() - pixel.y() / screen.backingScale};
}

// Collects what is said about a display, which counts once all of it was said.
class Output {
public:
    // Sets the flag whenever there is more to know.
    Output(const Connection& connection, const Global& global, bool& stale);

    [[nodiscard]] wl_output* handle() const { return output_.get(); }
    [[nodiscard]] const OutputState& state() const { return state_; }
    [[nodiscard]] bool isKnown() const {
        return !state_.size.isEmpty() && !state_.pixels.isEmpty();
    }

private:
    // Turns by a quarter have odd numbers, mirrored or not.
    void noteGeometry(std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*width*/,
                      std::int32_t /*height*/, std::int32_t /*subpixel*/, const char* /*make*/,
                      const char* /*model*/, std::int32_t transform) {
        turned_ = transform % 2 != 0;
    }
    void noteMode(std::uint32_t flags, std::int32_t width, std::int32_t height,
                  std::int32_t refresh);
    void finish();
    void notePlace(std::int32_t x, std::int32_t y) { coming_.place = QPoint(x, y); }
    void noteSize(std::int32_t width, std::int32_t height) { coming_.size = QSize(width, height); }

    Handle<wl_output> output_;
    Handle<zxdg_output_v1> logical_;
    bool& stale_;
    QSize mode_;
    bool turned_ = false;
    OutputState coming_;
    OutputState state_;
};

Output::Output(const Connection& connection, const Global& global, bool& stale)
    : output_(static_cast<wl_output*>(connection.bind(global, wl_output_interface, 3))),
      logical_(zxdg_output_manager_v1_get_xdg_output(connection.outputManager(), output_.get())),
      stale_(stale) {
    static constexpr wl_output_listener listener{
        .geometry = relay<&Output::noteGeometry, wl_output>,
        .mode = relay<&Output::noteMode, wl_output>,
        .done = relay<&Output::finish, wl_output>,
        .scale = ignored,
        .name = ignored,
        .description = ignored,
    };
    static constexpr zxdg_output_v1_listener logicalListener{
        .logical_position = relay<&Output::notePlace, zxdg_output_v1>,
        .logical_size = relay<&Output::noteSize, zxdg_output_v1>,
        .done = relay<&Output::finish, zxdg_output_v1>,
        .name = ignored,
        .description = ignored,
    };
    wl_output_add_listener(output_.get(), &listener, this);
    zxdg_output_v1_add_listener(logical_.get(), &logicalListener, this);
    coming_.id = global.name;
    state_.id = global.name;
}

void Output::noteMode(std::uint32_t flags, std::int32_t width, std::int32_t height,
                      std::int32_t refresh) {
    if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) {
        mode_ = QSize(width, height);
        coming_.rate = refresh / 1000.0;
    }
}

void Output::finish() {
    state_ = coming_;
    state_.pixels = turned_ ? mode_.transposed() : mode_;
    stale_ = true;
}

WaylandScreens::WaylandScreens(Connection& connection) : connection_(connection) {
    subscriptions_.push_back(
        connection.appeared.add([this](const Global& global) { add(global); }));
    subscriptions_.push_back(connection.vanished.add([this](const Global& global) {
        if (std::erase_if(outputs_, [&](const auto& output) {
                return output->state().id == global.name;
            }) > 0) {
            stale_ = true;
        }
    }));
    subscriptions_.push_back(connection.addHandler(*this));
    subscriptions_.push_back(connection.lost.add([this] { clear(); }));
    for (const auto& global : connection.globals()) {
        add(global);
    }
}

WaylandScreens::~WaylandScreens() = default;

Subscription WaylandScreens::onChange(std::function<void()> callback) {
    return changes_.add(std::move(callback));
}

Subscription WaylandScreens::onLayoutChange(std::function<void()> callback) {
    return layoutChanges_.add(std::move(callback));
}

const Screen* WaylandScreens::screen(std::uint32_t id) const {
    const auto found = std::ranges::find(screens_, id, &Screen::id);
    return found == screens_.end() ? nullptr : &*found;
}

wl_output* WaylandScreens::output(const Screen& screen) const {
    const auto found = std::ranges::find_if(
        outputs_, [&](const auto& output) { return output->state().id == screen.id; });
    return found == outputs_.end() ? nullptr : (*found)->handle();
}

void WaylandScreens::add(const Global& global) {
    if (global.interface == wl_output_interface.name) {
        outputs_.push_back(std::make_unique<Output>(connection_, global, stale_));
    }
}

void WaylandScreens::eventsDrained() {
    if (std::exchange(stale_, false)) {
        read();
    }
}

void WaylandScreens::read() {
    std::vector<OutputState> states;
    for (const auto& output : outputs_) {
        if (output->isKnown()) {
            states.push_back(output->state());
        }
    }
    const auto before = std::exchange(screens_, toScreens(states));
    if (!haveSameLayout(screens_, before)) {
        layoutChanges_.notify();
    }
    if (screens_ != before) {
        changes_.notify();
    }
}

void WaylandScreens::clear() {
    outputs_.clear();
    read();
}

} // namespace vantrel::wayland
