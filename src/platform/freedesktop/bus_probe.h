#pragma once

#include <QObject>

#include <chrono>
#include <functional>

namespace vantrel {

// Tells from the event loop whether the system bus answers: true when it sends anything, false
// when there is none or it goes. One that takes connections and is silent is waited for; a
// connection of the toolkit's would hold up the program until it speaks, and every other connection
// with it. Nothing is told once the context is gone.
//
// Buses that are not at a local socket are not asked: true.
void askSystemBus(QObject* context, const std::function<void(bool answers)>& answer);

// Whether the session bus takes connections, or lets them wait to be taken, and sends nothing
// within the time. Waits for it. Likewise only of buses at a local socket; one that is not there is
// not silent.
[[nodiscard]] bool sessionBusIsSilent(std::chrono::milliseconds limit);

} // namespace vantrel
