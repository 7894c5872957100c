#include "testdesk/compositor.h"

#include "testdesk/child_process.h"

#include <cstdio>
#include <utility>

#include <unistd.h>

namespace vantrel::desktop {

std::string nameOf(Compositor compositor) {
    return compositor == Compositor::sway ? "sway" : "labwc";
}

std::string versionOf(Compositor compositor) {
    return versionToldBy(nameOf(compositor));
}

bool followsPointers(Compositor compositor) {
    const auto first = compositor == Compositor::sway ? std::pair(1, 11) : std::pair(0, 9);
    std::pair<int, int> version;
    // NOLINTNEXTLINE(cert-err34-c): a version that is none counts as an old one.
    return std::sscanf(versionOf(compositor).c_str(), "%d.%d", &version.first, &version.second) ==
               2 &&
           version >= first;
}

std::vector<std::string> asOrdinaryUser(std::vector<std::string> command) {
    if (geteuid() == 0) {
        const std::vector<std::string> asNobody{"setpriv",
                                                "--reuid=65534",
                                                "--regid=65534",
                                                "--clear-groups",
                                                "--inh-caps=+dac_override",
                                                "--ambient-caps=+dac_override"};
        command.insert(command.begin(), asNobody.begin(), asNobody.end());
    }
    return command;
}

} // namespace vantrel::desktop
