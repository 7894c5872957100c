#pragma once

// How events of the C library reach member functions.

namespace vantrel::wayland {

template <auto member, typename Proxy>
struct Relay;

template <typename Owner, typename... Arguments, void (Owner::*member)(Arguments...),
          typename Proxy>
struct Relay<member, Proxy> {
    static void call(void* owner, Proxy* /*proxy*/, Arguments... arguments) {
        (static_cast<Owner*>(owner)->*member)(arguments...);
    }
};

// For a field of a listener of that kind of object: the owner is the listener's data.
template <auto member, typename Proxy>
inline constexpr auto relay = &Relay<member, Proxy>::call;

// For a field whose events say nothing that is wanted.
inline constexpr auto ignored = [](auto...) {};

} // namespace vantrel::wayland
