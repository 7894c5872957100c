#pragma once

#include "testdesk/child_process.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

namespace vantrel::desktop {

// A window of a Wayland program over a whole display, with the keyboard.
class NativeWindow {
public:
    // In an environment with WAYLAND_DISPLAY. Returns once it is on the screen, as far as the
    // session knows; throws otherwise.
    NativeWindow(Environment environment, const std::filesystem::path& folder,
                 const std::function<bool()>& isShown);

    // Of "enter" of the pointer, "press" and "release" of a button and "key-30", with the key's
    // code of Linux, as often as it has got them.
    [[nodiscard]] std::ptrdiff_t count(const std::string& what) const;

private:
    std::filesystem::path log_;
    ChildProcess process_;
};

} // namespace vantrel::desktop
