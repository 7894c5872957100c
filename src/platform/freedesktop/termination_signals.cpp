#include "platform/freedesktop/termination_signals.h"

#include <array>
#include <cerrno>
#include <sys/signalfd.h>
#include <system_error>
#include <utility>

namespace vantrel {
namespace {

sigset_t heededSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            sigaddset(&signals, number);
        }
    }
    return signals;
}

} // namespace

TerminationSignals::TerminationSignals() {
    const sigset_t signals = heededSignals();
    descriptor_ = UniqueDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!descriptor_) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
    pthread_sigmask(SIG_BLOCK, &signals, &former_);
}

TerminationSignals::TerminationSignals(std::function<void()> callback) : TerminationSignals() {
    deliverTo(std::move(callback));
}

TerminationSignals::~TerminationSignals() {
    // One that came after the program had made up its mind must not end it halfway out.
    while (takeOne()) {
    }
    pthread_sigmask(SIG_SETMASK, &former_, nullptr);
}

void TerminationSignals::deliverTo(std::function<void()> callback) {
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, call = std::move(callback)] {
                         if (takeOne()) {
                             call();
                         }
                     });
}

bool TerminationSignals::takeOne() {
    signalfd_siginfo signal{};
    return read(descriptor_.get(), &signal, sizeof signal) == sizeof signal;
}

} // namespace vantrel
