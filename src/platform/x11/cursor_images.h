#pragma once

#include "platform/display.h"
#include "platform/x11/connection.h"

#include <string>
#include <string_view>

namespace vantrel::x11 {

struct CursorTheme {
    std::string name; // empty: the default one
    int size = 0;     // pixels

    bool operator==(const CursorTheme&) const = default;
};

// Where a desktop may say which theme it uses.
struct CursorSources {
    std::string_view settings;      // the settings block
    std::string_view resources;     // the resource database
    std::string_view themeVariable; // XCURSOR_THEME
    std::string_view sizeVariable;  // XCURSOR_SIZE
    QSize screen;                   // pixels
};

// The first source that names one counts; the size is otherwise that of a program that is
// told nothing.
[[nodiscard]] CursorTheme chooseCursorTheme(const CursorSources& sources);

// The pointer of the desktop's theme, with the pixels that it has on the screen. A desktop has one
// for all its displays, so that it is smaller in points where the scale is larger.
class X11CursorImages final : public CursorImages {
public:
    // The other pictures are shown when there is no theme. Without a connection the theme is that
    // of the environment. Both must outlive this.
    X11CursorImages(const Connection* connection, const CursorImages& otherwise)
        : connection_(connection), otherwise_(otherwise) {}

    [[nodiscard]] CursorImage arrow(double scale) const override;

private:
    const Connection* connection_;
    const CursorImages& otherwise_;
};

} // namespace vantrel::x11
