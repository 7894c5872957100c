#include "platform/session_means.h"

namespace vantrel {

SessionMeans meansOf(const SessionOffer& offer) {
    const auto all = [](Means means) { return SessionMeans{means, means, means, means}; };
    if (offer.marks) {
        auto means = all(Means::desktop);
        means.presses = offer.markedPresses ? Means::desktop : Means::none;
        return means;
    }
    if (!offer.xwayland) {
        return all(Means::x11);
    }
    // The one is of no use without the other.
    if (offer.layerShell && offer.cursorSessions) {
        return {.drawing = Means::layerShell,
                .pointer = Means::cursorSession,
                .presses = Means::none,
                .shortcuts = offer.portal ? Means::portal : Means::xwayland};
    }
    return all(Means::xwayland);
}

SessionOffer heldTo(std::string_view means, SessionOffer offer) {
    if (means == "xwayland") {
        offer.layerShell = false;
    }
    return offer;
}

} // namespace vantrel
