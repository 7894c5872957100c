#pragma once

#include <cstdint>
#include <string_view>

// By what marks come to the screen, as a session's compositor or X server lets them.

namespace vantrel {

// What there is to choose from.
struct SessionOffer {
    bool wayland = false;        // it is the session of a compositor,
    bool xwayland = false;       // of which an X server is in use that shows its windows there
    bool layerShell = false;     // lets programs draw above all windows,
    bool cursorSessions = false; // and tells them where the pointer is
    bool portal = false;         // takes shortcuts for programs
    bool marks = false;          // the desktop itself draws marks
    bool markedPresses = false;  // and rings at presses

    bool operator==(const SessionOffer&) const = default;
};

enum class Means : std::uint8_t {
    none,
    x11,
    xwayland,
    layerShell,
    cursorSession,
    portal,
    desktop,
};

struct SessionMeans {
    Means drawing = Means::none; // above all windows, or in Xwayland above those of X programs
    Means pointer = Means::none; // following it
    Means presses = Means::none;
    Means shortcuts = Means::none; // those of the whole session, or of X programs

    bool operator==(const SessionMeans&) const = default;
};

[[nodiscard]] SessionMeans meansOf(const SessionOffer& offer);

// What is left of an offer by the name of the means that it is to be held to, as tests do:
// "xwayland", or any other for all of it.
[[nodiscard]] SessionOffer heldTo(std::string_view means, SessionOffer offer);

} // namespace vantrel
