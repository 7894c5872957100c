#include "measurements.h"

#include "testdesk/usage.h"
#include "testdesk/x_traffic.h"

#include <iomanip>
#include <sstream>
#include <thread>

#include <xcb/present.h>
#include <xcb/xproto.h>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

constexpr desktop::PixelPoint restingPlace{960, 540};
constexpr desktop::RequestKind queryPointer{XCB_QUERY_POINTER, 0};

void rest(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

Samples costAtRest(BenchDesktop& desktop, const Contender& contender, double seconds) {
    desktop.input.moveTo(restingPlace);
    const auto process = startAndAwait(desktop, contender);
    rest(0.5); // until the start is over
    const auto before = desktop::cpuTime(process.pid());
    rest(seconds);
    return {Milliseconds(desktop::cpuTime(process.pid()) - before).count() / seconds};
}

// How often each request was sent in a second: by name the two that are expected, by number others.
std::string describe(const desktop::TrafficCounts& counts, desktop::RequestKind notifyMsc,
                     double seconds) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(1);
    for (const auto& [kind, count] : counts.requests) {
        if (kind == notifyMsc) {
            text << "NotifyMSC ";
        } else if (kind == queryPointer) {
            text << "QueryPointer ";
        } else {
            text << "request " << int{kind.major} << '.' << int{kind.minor} << ' ';
        }
        text << static_cast<double>(count) / seconds << "/s, ";
    }
    text << static_cast<double>(counts.requestBytes) / seconds << " bytes/s";
    return text.str();
}

Check onlyLinkAndPointer(const Contender& contender, double seconds) {
    BenchDesktop desktop;
    const desktop::XTraffic traffic(desktop.server.display());
    desktop.input.moveTo(restingPlace);
    const auto process = startAndAwait(desktop, contender, traffic.display());
    rest(1); // until the start is over
    const desktop::TrafficCounts before = traffic.counts();
    rest(seconds);
    const desktop::TrafficCounts counts = traffic.counts() - before;
    const desktop::RequestKind notifyMsc{
        desktop.connection.majorOpcode("Present").value_or(std::uint8_t{0}),
        XCB_PRESENT_NOTIFY_MSC};
    const auto expected = counts.count(notifyMsc) + counts.count(queryPointer);
    return {.name = "at rest only NotifyMSC and QueryPointer",
            .met = expected > 0 && expected == counts.totalRequests(),
            .found = describe(counts, notifyMsc, seconds)};
}

} // namespace

Report measureRest(const Contenders& contenders, const Effort& effort) {
    BenchDesktop desktop;
    const Comparison comparison = inTurns(
        effort.turns,
        [&] { return costAtRest(desktop, contenders.programAtRest, effort.secondsInTurn); },
        [&] { return costAtRest(desktop, contenders.floorAtRest, effort.secondsInTurn); });
    return {.rows = {summarize("at rest, CPU of the program", "ms/s", comparison, median, 1.3)},
            .checks = {onlyLinkAndPointer(contenders.programAtRest, effort.secondsInTurn)}};
}

} // namespace vantrel::bench
