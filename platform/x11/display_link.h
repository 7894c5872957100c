#pragma once

#include "platform/display_link.h"
#include "platform/x11/connection.h"
#include "platform/x11/screens.h"

#include <cstdint>
#include <optional>

namespace vantrel::x11 {

// Frames as the display shows them, from the vertical blanks that the server reports; where these
// keep another pace than the display does, or stop, as they do on virtual displays and displays
// that are switched off, from a timer.
class X11DisplayLinks final : public DisplayLinks {
public:
    X11DisplayLinks(Connection& connection, const X11Screens& screens);

    std::unique_ptr<DisplayLink> create(const Screen& screen, FrameRateRange range,
                                        std::function<void()> target) override;

private:
    Connection& connection_;
    const X11Screens& screens_;
};

// Judges the pace of a display's vertical blanks from reports of their count and time.
class PaceCheck {
public:
    // The rate that the display promises, in frames for each second.
    explicit PaceCheck(double rate) : rate_(rate) {}

    // A vertical blank, by its running number and its time in microseconds. Tells, once enough were
    // seen, whether they come at the promised rate.
    std::optional<bool> add(std::uint64_t count, std::uint64_t microseconds);

private:
    struct Blank {
        std::uint64_t count = 0;
        std::uint64_t microseconds = 0;
    };

    double rate_;
    std::optional<Blank> first_;
};

} // namespace vantrel::x11
