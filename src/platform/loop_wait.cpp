#include "platform/loop_wait.h"

#include <QAbstractEventDispatcher>

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
#include <utility>
#include <vector>

#include <glib.h>
#include <sys/epoll.h>
#include <unistd.h>

namespace vantrel {

namespace {

using std::chrono::milliseconds;

// What is begun by what is handled, such as a timer, comes into effect with the next turn of Qt's
// loop, which is no later than after that.
constexpr milliseconds longestStay(500);

// There is one loop.
std::vector<LoopWait*> waiting;
GPollFunc formerWait = nullptr;

// Whether what that has to say was handled, with nothing left to the loop.
bool handle(GPollFD& ready) {
    const auto found = std::ranges::find(waiting, ready.fd, &LoopWait::descriptor);
    const bool handled = ready.revents == G_IO_IN && found != waiting.end() && (*found)->handle();
    if (handled) {
        ready.revents = 0;
    }
    return handled;
}

// Descriptors that are waited for again and again. poll() has the kernel go through all of them
// each time, which takes longer than following a motion.
class Watch {
public:
    explicit Watch(std::span<GPollFD> descriptors) : epoll_(epoll_create1(EPOLL_CLOEXEC)) {
        for (auto& descriptor : descriptors) {
            epoll_event event{.events = descriptor.events, .data = {.ptr = &descriptor}};
            watchesAll_ =
                epoll_ctl(epoll_, EPOLL_CTL_ADD, descriptor.fd, &event) == 0 && watchesAll_;
        }
    }
    ~Watch() { close(epoll_); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    // The only one that has something to say in that time. Null when that is none, or several, or
    // cannot be told.
    [[nodiscard]] GPollFD* onlyReady(milliseconds limit) const {
        std::array<epoll_event, 2> ready{};
        if (!watchesAll_ || epoll_wait(epoll_, ready.data(), static_cast<int>(ready.size()),
                                       static_cast<int>(limit.count())) != 1) {
            return nullptr;
        }
        auto* descriptor = static_cast<GPollFD*>(ready[0].data.ptr);
        descriptor->revents = static_cast<gushort>(ready[0].events);
        return descriptor;
    }

private:
    int epoll_;
    bool watchesAll_ = true;
};

// In place of the loop's poll().
int wait(GPollFD* descriptors, guint count, int timeout) {
    using Clock = std::chrono::steady_clock;
    const auto begun = Clock::now();
    const std::span all(descriptors, count);
    const int ready = formerWait(descriptors, count, timeout);
    if (ready != 1 || !handle(*std::ranges::find_if(all, [](const GPollFD& descriptor) {
            return descriptor.revents != 0;
        }))) {
        return ready;
    }
    const Watch watch(all);
    auto now = Clock::now();
    auto end = now + longestStay;
    if (timeout >= 0) {
        end = std::min(end, begun + milliseconds(timeout));
    }
    while (now < end) {
        auto* one = watch.onlyReady(std::chrono::ceil<milliseconds>(end - now));
        if (one == nullptr) {
            break;
        }
        if (!handle(*one)) {
            return 1;
        }
        now = Clock::now();
    }
    return formerWait(descriptors, count, 0);
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
