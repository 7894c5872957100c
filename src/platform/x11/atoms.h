#pragma once

#include <cstdint>

namespace vantrel::x11 {

// The atoms in use: what they are called here, their name on the server, and whose number follows
// that name.
#define VANTREL_ATOMS(ATOM)                                                                        \
    ATOM(compositingManager, "_NET_WM_CM_S", screen)                                               \
    ATOM(windowType, "_NET_WM_WINDOW_TYPE", none)                                                  \
    ATOM(windowTypeDnd, "_NET_WM_WINDOW_TYPE_DND", none)                                           \
    ATOM(bypassCompositor, "_NET_WM_BYPASS_COMPOSITOR", none)                                      \
    ATOM(noShadow, "_COMPTON_SHADOW", none)                                                        \
    ATOM(workArea, "_NET_WORKAREA", none)                                                          \
    ATOM(currentDesktop, "_NET_CURRENT_DESKTOP", none)                                             \
    ATOM(resourceManager, "RESOURCE_MANAGER", none)                                                \
    ATOM(xsettings, "_XSETTINGS_S", screen)                                                        \
    ATOM(xsettingsSettings, "_XSETTINGS_SETTINGS", none)                                           \
    ATOM(manager, "MANAGER", none)                                                                 \
    ATOM(utf8String, "UTF8_STRING", none)                                                          \
    ATOM(netWmName, "_NET_WM_NAME", none)                                                          \
    ATOM(systemTray, "_NET_SYSTEM_TRAY_S", screen)                                                 \
    ATOM(activeWindow, "_NET_ACTIVE_WINDOW", none)                                                 \
    ATOM(windowDesktop, "_NET_WM_DESKTOP", none)                                                   \
    ATOM(instance, "_VANTREL_INSTANCE_", user)                                                     \
    ATOM(instanceAddress, "_VANTREL_ADDRESS", none)

enum class Atom : std::uint8_t {
#define VANTREL_ATOM_ENUMERATOR(atom, name, number) atom,
    VANTREL_ATOMS(VANTREL_ATOM_ENUMERATOR)
#undef VANTREL_ATOM_ENUMERATOR
        count
};

} // namespace vantrel::x11
