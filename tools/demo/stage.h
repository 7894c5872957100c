#pragma once

#include "pictures.h"
#include "testdesk/private_server.h"
#include "testdesk/x_connection.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantrel::demo {

// One with a screen for the stage, whose programs find the look of the pointer in their home.
[[nodiscard]] desktop::PrivateServer stageServer();

// The desktop of the demo with the two windows on it, a slide and an editor, which the window
// manager looks after as it does with anybody's. They react to clicks, so that these are seen to
// reach what lies beneath the effects.
class Stage {
public:
    struct Place {
        std::string screen;  // the display that shows it
        std::string display; // that one, or of an Xwayland which is shown there
        bool inOneWindow = false;
    };
    // Returns once everything is on the screen.
    explicit Stage(const Place& place);

    [[nodiscard]] const desktop::XConnection& screen() const { return screen_; }
    void setCaption(const Caption& caption);
    // What is on the screen there when nothing lies above the windows: 0x00RRGGBB.
    [[nodiscard]] std::uint32_t pictureAt(desktop::PixelPoint place) const;
    // The button presses that the windows have received so far. Chooses the bars that were pressed.
    int presses();

private:
    xcb_window_t open(xcb_window_t parent, const QRect& area, const std::string& type);
    void show(xcb_window_t window, const QRect& area, const QImage& image);
    void showWindows();
    void take(const xcb_generic_event_t& event);

    desktop::XConnection screen_;
    desktop::XConnection connection_;
    QImage picture_{stageSize, QImage::Format_RGB32};
    xcb_window_t desktop_ = XCB_NONE;
    xcb_window_t slide_ = XCB_NONE;
    xcb_window_t editor_ = XCB_NONE;
    std::optional<int> chosenBar_;
    int presses_ = 0;
};

} // namespace vantrel::demo
