#pragma once

#include "platform/display.h"
#include "platform/wayland/connection.h"

#include <QPoint>
#include <QSize>

#include <cstdint>
#include <memory>
#include <vector>

namespace vantrel::wayland {

// What the compositor says about one display.
struct OutputState {
    std::uint32_t id = 0;
    QPoint place; // in points of the compositor, y downward
    QSize size;   // in those points, as it is turned
    QSize pixels; // likewise
    double rate = 0;

    // Pixels for each point.
    [[nodiscard]] double scale() const;
    bool operator==(const OutputState&) const = default;
};

// The displays of the desktop, of which the first is the primary one.
[[nodiscard]] std::vector<Screen> toScreens(const std::vector<OutputState>& outputs);

// A pixel of the display, from its top-left corner, y downward.
[[nodiscard]] GlobalPoint toGlobal(QPoint pixel, const Screen& screen);

class Output;

class WaylandScreens final : public Screens, private BatchHandler {
public:
    explicit WaylandScreens(Connection& connection);
    ~WaylandScreens() override;
    WaylandScreens(const WaylandScreens&) = delete;
    WaylandScreens& operator=(const WaylandScreens&) = delete;

    [[nodiscard]] const std::vector<Screen>& list() const override { return screens_; }
    Subscription onChange(std::function<void()> callback) override;
    Subscription onLayoutChange(std::function<void()> callback) override;

    // Null when it has gone.
    [[nodiscard]] const Screen* screen(std::uint32_t id) const;
    [[nodiscard]] wl_output* output(const Screen& screen) const;

private:
    void eventsDrained() override;
    void add(const Global& global);
    void read();
    void clear();

    Connection& connection_;
    bool stale_ = false;
    std::vector<std::unique_ptr<Output>> outputs_; // in the order in which they came
    std::vector<Screen> screens_;
    Observers<> changes_;
    Observers<> layoutChanges_;
    std::vector<Subscription> subscriptions_;
};

} // namespace vantrel::wayland
