#pragma once

#include "testdesk/synthetic_input.h"

#include <chrono>
#include <string>
#include <vector>

namespace vantrel::demo {

// Moves the pointer as a hand does: it sets off gently, swings in a slight arc and comes to rest.
class Hand {
public:
    Hand(const std::string& display, desktop::PixelPoint start);

    [[nodiscard]] desktop::PixelPoint place() const { return place_; }
    void moveTo(desktop::PixelPoint target, std::chrono::milliseconds duration);
    // Round and round over a place, and back to where it was.
    void circle(desktop::PixelPoint centre, int turns, std::chrono::milliseconds duration);
    void rest(std::chrono::milliseconds duration);
    void press(desktop::Button button) { input_.press(button); }
    void release(desktop::Button button) { input_.release(button); }
    void type(const std::vector<std::uint32_t>& keysyms) { input_.typeChord(keysyms); }

private:
    template <typename Path>
    void follow(const Path& path, std::chrono::milliseconds duration);

    desktop::SyntheticInput input_;
    desktop::PixelPoint place_;
};

} // namespace vantrel::demo
