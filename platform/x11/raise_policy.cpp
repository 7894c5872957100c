#include "platform/x11/raise_policy.h"

namespace vantrel::x11 {

bool RaisePolicy::shouldRaise(Window window, double now) {
    auto& rival = rivals_[window];
    if (rival.times > patience) {
        return false;
    }
    if (rival.times == 0 || now - rival.since > period) {
        rival = {now, 0};
    }
    ++rival.times;
    return rival.times <= patience;
}

} // namespace vantrel::x11
