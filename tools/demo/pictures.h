#pragma once

#include <optional>
#include <string>

#include <QImage>
#include <QRect>
#include <QString>

namespace vantrel::demo {

// What stands on the stage, painted. All places and sizes are in pixels, and areas are on the
// screen.

inline constexpr QSize stageSize(1280, 720);
inline constexpr QRect slideArea(40, 44, 784, 540);
inline constexpr QRect editorArea(848, 112, 392, 376);

inline constexpr int barCount = 4;
// A bar of the chart, on the slide.
[[nodiscard]] QRect barArea(int bar);

// One without a title is not shown.
struct Caption {
    QString title;
    QString detail;
};

[[nodiscard]] QImage paintDesktop(const Caption& caption);
[[nodiscard]] QImage paintSlide(std::optional<int> chosenBar);
[[nodiscard]] QImage paintEditor();

} // namespace vantrel::demo
