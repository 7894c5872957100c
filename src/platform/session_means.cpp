#include "platform/session_means.h"

namespace vantrel {

SessionMeans meansOf(const SessionOffer& offer) {
    const auto all = [](Means means) { return SessionMeans{means, means, means, means}; };
    if (offer.marks) {
        auto means = all(Means::desktop);
        means.presses = offer.markedPresses ? Means::desktop : Means::none;
        return means;
    }
    if (!offer.wayland) {
        return all(Means::x11);
    }
    const auto byServer = offer.xwayland ? Means::xwayland : Means::none;
    // The one is of no use without the other.
    if (offer.layerShell && offer.cursorSessions) {
        return {.drawing = Means::layerShell,
                .pointer = Means::cursorSession,
                .presses = Means::none,
                .shortcuts = offer.portal ? Means::portal : byServer};
    }
    return all(byServer);
}

SessionOffer heldTo(std::string_view means, SessionOffer offer) {
    if (means == "xwayland") {
        offer.layerShell = false;
    }
    return offer;
}

} // namespace vantrel
