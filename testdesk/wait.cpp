#include "testdesk/wait.h"

#include <algorithm>
#include <thread>

namespace vantrel::desktop {

bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + limit;
    std::chrono::microseconds step = 200us;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(step);
        step = std::min<std::chrono::microseconds>(2 * step, 2ms);
    }
    return true;
}

} // namespace vantrel::desktop
