#include "bus_traffic.h"

#include "testdesk/wait.h"

#include <chrono>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace vantrel::bench {

BusTraffic::BusTraffic(const desktop::Environment& environment, const std::filesystem::path& folder)
    : log_(folder / "bus.log"),
      monitor_(
          {.arguments = {"dbus-monitor", "--address", environment.at("DBUS_SESSION_BUS_ADDRESS"),
                         "--profile", "path_namespace=/org/vantrel"},
           .environment = environment,
           .output = log_}) {
    // The bus tells it that it has lost its name, once it is a monitor.
    if (!desktop::waitFor(
            [this] { return desktop::readFile(log_).find("NameLost") != std::string::npos; })) {
        throw std::runtime_error("no messages of the bus are to be had");
    }
}

long BusTraffic::count() const {
    std::istringstream lines(desktop::readFile(log_));
    long messages = 0;
    for (std::string line; std::getline(lines, line);) {
        messages += line.find("/org/vantrel") != std::string::npos ? 1 : 0;
    }
    return messages;
}

Check BusTraffic::goesForChangesAlone(const std::string& where, const std::function<void()>& change,
                                      const std::function<void(double seconds)>& move,
                                      double seconds, long most) const {
    const auto during = [this](const std::function<void()>& action) {
        const auto before = count();
        action();
        std::this_thread::sleep_for(std::chrono::milliseconds(300)); // for the last ones to be told
        return count() - before;
    };
    const auto changed = during(change);
    const auto moved = during([&] { move(seconds); });
    const auto rested =
        during([&] { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); });
    std::ostringstream text;
    text << changed << " for a change, " << moved << " for " << 1000 * seconds << " motions, "
         << rested << " at rest";
    return {.name = where + ", messages on the bus",
            .met = changed > 0 && moved <= most && rested <= most,
            .found = text.str()};
}

} // namespace vantrel::bench
