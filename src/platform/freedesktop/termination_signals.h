#pragma once

#include "platform/freedesktop/unique_descriptor.h"

#include <QSocketNotifier>
#include <csignal>
#include <functional>
#include <memory>

namespace vantrel {

// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) into a call from Qt's event
// loop, one for each signal that arrives. A signal that the parent process had this one ignore, as
// nohup does, stays ignored.
//
// They are blocked from here on, and threads and child processes inherit that; a thread that did
// not would be ended by them, and the process with it. So it is made before any thread is started,
// which the toolkit's application object does, and lives until the program has nothing left to
// save.
class TerminationSignals {
public:
    TerminationSignals();
    // Starts to deliver at once; needs the application object.
    explicit TerminationSignals(std::function<void()> callback);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // From now on, once the application object is there, and for those that came before.
    void deliverTo(std::function<void()> callback);

private:
    bool takeOne();

    sigset_t former_{};
    UniqueDescriptor descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace vantrel
