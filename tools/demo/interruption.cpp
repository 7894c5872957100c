#include "interruption.h"

#include "testdesk/wait.h"

#include <csignal>
#include <initializer_list>
#include <stdexcept>

#include <ctime>
#include <sys/prctl.h>

namespace vantrel::demo {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void throwIfInterrupted() {
    if (interrupted != 0) {
        throw Interrupted();
    }
}

} // namespace

void catchInterruptions() {
    struct sigaction action {};
    action.sa_handler = [](int) { interrupted = 1; };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

void sleepUntil(std::chrono::steady_clock::time_point moment) {
    using namespace std::chrono;
    const auto sinceStart = moment.time_since_epoch();
    const auto whole = duration_cast<seconds>(sinceStart);
    const timespec until{.tv_sec = whole.count(),
                         .tv_nsec = duration_cast<nanoseconds>(sinceStart - whole).count()};
    throwIfInterrupted();
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr);
    throwIfInterrupted();
}

bool waitUninterrupted(const std::function<bool()>& condition) {
    return desktop::waitFor([&] {
        throwIfInterrupted();
        return condition();
    });
}

void expect(const std::string& what, const std::function<bool()>& condition) {
    if (!waitUninterrupted(condition)) {
        throw std::runtime_error("not seen on the screen: " + what);
    }
}

} // namespace vantrel::demo
