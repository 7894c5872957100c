#include "platform/loop_wait.h"

#include <QAbstractEventDispatcher>

#include <algorithm>
#include <chrono>
#include <span>
#include <utility>
#include <vector>

#include <glib.h>

namespace vantrel {

namespace {

using std::chrono::milliseconds;

// What is begun meanwhile, such as a timer, comes into effect with the next turn of Qt's loop,
// which is no later than after that.
constexpr milliseconds longestStay(500);

// There is one loop.
std::vector<LoopWait*> waiting;
GPollFunc formerWait = nullptr;

// Null unless one of their descriptors has something to say, and no other.
LoopWait* onlyReady(std::span<const GPollFD> descriptors) {
    const auto ready = std::ranges::find_if(
        descriptors, [](const GPollFD& descriptor) { return descriptor.revents != 0; });
    if (ready == descriptors.end() || ready->revents != G_IO_IN) {
        return nullptr;
    }
    const auto found = std::ranges::find(waiting, ready->fd, &LoopWait::descriptor);
    return found == waiting.end() ? nullptr : *found;
}

// In place of the loop's poll().
int wait(GPollFD* descriptors, guint count, int timeout) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const auto longest = timeout < 0 ? longestStay : std::min(longestStay, milliseconds(timeout));
    int left = timeout;
    while (true) {
        const int ready = formerWait(descriptors, count, left);
        const auto* one = ready == 1 ? onlyReady({descriptors, count}) : nullptr;
        if (one == nullptr || !one->handle()) {
            return ready;
        }
        const auto passed = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
        left = static_cast<int>((longest - passed).count());
        if (left <= 0) {
            return ready;
        }
    }
}

} // namespace

LoopWait::LoopWait(int descriptor, std::function<bool()> handle)
    : descriptor_(descriptor), handle_(std::move(handle)) {
    if (!QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib")) {
        return;
    }
    if (waiting.empty()) {
        formerWait = g_main_context_get_poll_func(nullptr);
        g_main_context_set_poll_func(nullptr, wait);
    }
    waiting.push_back(this);
}

LoopWait::~LoopWait() {
    if (std::erase(waiting, this) > 0 && waiting.empty()) {
        g_main_context_set_poll_func(nullptr, formerWait);
    }
}

} // namespace vantrel
