#pragma once

#include "platform/x11/connection.h"

#include <optional>

namespace vantrel::x11 {

// Watches from now on who owns a selection. Returns whether anybody does.
bool watchSelection(Connection& connection, xcb_atom_t selection);
// Whether there is an owner after the event; nothing when it tells of something else.
[[nodiscard]] std::optional<bool>
ownedAfter(const Connection& connection, const xcb_generic_event_t& event, xcb_atom_t selection);
[[nodiscard]] xcb_window_t selectionOwner(const Connection& connection, xcb_atom_t selection);

} // namespace vantrel::x11
