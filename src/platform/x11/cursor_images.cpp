#include "platform/x11/cursor_images.h"

#include "platform/environment.h"
#include "platform/x11/desktop_settings.h"
#include "platform/x11/text.h"

#include <algorithm>
#include <array>

#include <X11/Xcursor/Xcursor.h>

namespace vantrel::x11 {

namespace {

struct DestroyImage {
    void operator()(XcursorImage* image) const { XcursorImageDestroy(image); }
};
using ThemeImage = std::unique_ptr<XcursorImage, DestroyImage>;

// On which a pointer has the size that compositors give one.
constexpr QSize usualScreen(1920, 1152);

// Themes have no pointer beyond this.
constexpr double maximumSize = 512;

std::optional<int> toSize(std::optional<double> pixels) {
    return pixels && *pixels >= 1 ? std::optional(static_cast<int>(std::min(*pixels, maximumSize)))
                                  : std::nullopt;
}

// The size that libXcursor gives a program that was told none.
int defaultSize(const CursorSources& sources) {
    constexpr double pixelsAt72Dpi = 16;
    constexpr int screenParts = 48;
    if (const auto dpi = fontDpiOf(sources.resources)) {
        return toSize(*dpi * pixelsAt72Dpi / 72).value_or(1);
    }
    return std::max(1, std::min(sources.screen.width(), sources.screen.height()) / screenParts);
}

CursorImage toCursorImage(const XcursorImage& source, double scale) {
    const QImage pixels(reinterpret_cast<const uchar*>(source.pixels),
                        static_cast<int>(source.width), static_cast<int>(source.height),
                        QImage::Format_ARGB32_Premultiplied);
    CursorImage cursor{pixels.copy(), QPointF(source.xhot, source.yhot) / scale};
    cursor.image.setDevicePixelRatio(scale);
    return cursor;
}

} // namespace

CursorTheme chooseCursorTheme(const CursorSources& sources) {
    const auto resource = [&](std::string_view name) {
        return resourceOf(sources.resources, name).value_or(std::string_view());
    };
    const auto name = textSetting(sources.settings, "Gtk/CursorThemeName");
    const auto size = integerSetting(sources.settings, "Gtk/CursorThemeSize");
    const std::array names{name.value_or(std::string_view()), resource("Xcursor.theme"),
                           sources.themeVariable};
    const std::array sizes{toSize(size), toSize(positiveNumber(resource("Xcursor.size"))),
                           toSize(positiveNumber(sources.sizeVariable))};
    CursorTheme theme{.size = defaultSize(sources)};
    const auto* const named = std::ranges::find_if_not(names, &std::string_view::empty);
    if (named != names.end()) {
        theme.name = *named;
    }
    const auto* const sized = std::ranges::find_if(sizes, &std::optional<int>::has_value);
    if (sized != sizes.end()) {
        theme.size = **sized;
    }
    return theme;
}

CursorImage X11CursorImages::arrow(double scale) const {
    std::string settings;
    std::string resources;
    QSize screen = usualScreen;
    if (connection_ != nullptr) {
        settings = readSettings(*connection_, settingsOwner(*connection_));
        resources = readResources(*connection_);
        screen = connection_->rootSize();
    }
    const auto themeVariable = environment("XCURSOR_THEME");
    const auto sizeVariable = environment("XCURSOR_SIZE");
    const auto theme = chooseCursorTheme({.settings = settings,
                                          .resources = resources,
                                          .themeVariable = themeVariable,
                                          .sizeVariable = sizeVariable,
                                          .screen = screen});
    // Compositors count it in points.
    const int size = connection_ != nullptr ? theme.size : qRound(theme.size * scale);
    for (const char* name : {"left_ptr", "default"}) {
        const ThemeImage image(
            XcursorLibraryLoadImage(name, theme.name.empty() ? nullptr : theme.name.c_str(), size));
        if (image) {
            return toCursorImage(*image, scale);
        }
    }
    return otherwise_.arrow(scale);
}

} // namespace vantrel::x11
