#include "platform/x11/raise_policy.h"

namespace vantrel::x11 {

bool RaisePolicy::shouldRaise(Window window, double now) {
    auto& rival = rivals_[window];
    if (now - rival.cameAbove > forgivingTime) {
        rival = {};
    }
    rival.cameAbove = now;
    if (rival.answers >= answersAllowed) {
        return false;
    }
    rival.answers = now - rival.raisedOver <= answerTime ? rival.answers + 1 : 0;
    if (rival.answers >= answersAllowed) {
        return false;
    }
    rival.raisedOver = now;
    return true;
}

} // namespace vantrel::x11
