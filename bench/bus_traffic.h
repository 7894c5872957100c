#pragma once

#include "comparison.h"
#include "testdesk/child_process.h"

#include <filesystem>
#include <functional>
#include <string>

namespace vantrel::bench {

// What Vantrel and its agent in the compositor say to each other on a session's bus.
class BusTraffic {
public:
    // The environment of that session, and a folder for the log. Returns once it listens.
    BusTraffic(const desktop::Environment& environment, const std::filesystem::path& folder);

    // That messages go for a change, which is made here, but none for motions, and none in as much
    // time without; or so many, of agents that call again from time to time.
    [[nodiscard]] Check goesForChangesAlone(const std::string& where,
                                            const std::function<void()>& change,
                                            const std::function<void(double seconds)>& move,
                                            double seconds, long most = 0) const;

private:
    [[nodiscard]] long count() const;

    std::filesystem::path log_;
    desktop::ChildProcess monitor_;
};

} // namespace vantrel::bench
