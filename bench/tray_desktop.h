#pragma once

#include "bench_desktop.h"

#include "testdesk/program_windows.h"
#include "testdesk/tray.h"
#include "testdesk/usage.h"

namespace vantrel::bench {

// A part of the screen, watched through rows between which nothing of note fits.
class WatchedArea {
public:
    // The connection must outlive it.
    WatchedArea(const desktop::XConnection& connection, const desktop::PixelRect& area)
        : connection_(connection), area_(area) {}

    using Look = std::vector<std::uint32_t>;
    [[nodiscard]] Look look() const;
    // From begin to the last change, after which nothing changed for a while. Throws when nothing
    // changes in ten seconds.
    [[nodiscard]] Milliseconds timeUntilPainted(const Look& before, Clock::time_point begin) const;

private:
    const desktop::XConnection& connection_;
    desktop::PixelRect area_;
};

struct TrayDesktop {
    BenchDesktop bench{};
    desktop::Tray tray{bench.server};
    desktop::Environment environment{bench.server.environment()}; // of what is started in it
};

// A program with an icon in the tray, and where on the screen its parts appear.
struct TrayProgram {
    Contender contender{};
    std::string name{}; // of the program in its windows
    bool marksPointer = false;
    desktop::PixelRect icon{};
    desktop::PixelRect popup{};
    desktop::PixelRect window{};
};

// Finds the places out in a run that also warms up the disk. A click on the icon opens and closes
// the popup; Control and the comma key in that open the window.
[[nodiscard]] TrayProgram rehearse(TrayDesktop& desktop, const Contender& contender,
                                   bool marksPointer);

// Returns when the icon shows and, where the program marks it, the pointer is marked.
[[nodiscard]] desktop::ChildProcess startInTray(TrayDesktop& desktop, const TrayProgram& program,
                                                Milliseconds* untilShown = nullptr);

// From the request until all is painted.
Milliseconds openPopup(TrayDesktop& desktop, const TrayProgram& program);
void closePopup(TrayDesktop& desktop, const TrayProgram& program);
// With the popup open, which closes.
Milliseconds openWindow(TrayDesktop& desktop, const TrayProgram& program);
void closeWindow(TrayDesktop& desktop, const TrayProgram& program);
[[nodiscard]] bool bothOpen(const TrayDesktop& desktop, const TrayProgram& program);

// What a program holds, and the X server for it.
struct Usage {
    std::uint64_t memory = 0; // bytes
    desktop::ServerResources resources{};

    // Beyond pages that the allocator takes back and forth.
    [[nodiscard]] bool exceeds(const Usage& before) const;
};

[[nodiscard]] Usage usageOf(const TrayDesktop& desktop, const desktop::ChildProcess& process);
[[nodiscard]] std::string describe(const Usage& before, const Usage& after);

} // namespace vantrel::bench
