#pragma once

#include "platform/display.h"
#include "platform/x11/connection.h"
#include "platform/x11/screens.h"

#include <cstdint>
#include <optional>

namespace vantrel::x11 {

// Frames as the display shows them, from the vertical blanks that the server reports; where these
// keep another pace than the display does, stop, or never come, as on virtual displays and displays
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

// Judges a display's vertical blanks from the server's reports of them.
class PaceCheck {
public:
    enum class Verdict : std::uint8_t {
        blank,   // one more
        none,    // no blank since the last report: the next one would come at once as well
        useless, // for good: they keep another pace than the display does, or there are none
    };

    // The rate that the display promises, in frames for each second.
    explicit PaceCheck(double rate) : rate_(rate) {}

    // A report, by the running number of the blank and its time in microseconds.
    Verdict add(std::uint64_t count, std::uint64_t microseconds);

private:
    struct Blank {
        std::uint64_t count = 0;
        std::uint64_t microseconds = 0;
    };

    [[nodiscard]] bool keepsRate(const Blank& blank);

    double rate_;
    std::optional<Blank> first_;
    std::optional<Blank> last_;
    int withoutBlank_ = 0; // reports running
    bool rateSeen_ = false;
    bool useless_ = false;
};

} // namespace vantrel::x11
