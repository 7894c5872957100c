#include "ui/menu_panel.h"

#include "platform/native_windows.h"
#include "ui/components/brand_mark.h"
#include "ui/components/buttons.h"
#include "ui/components/effect_preview.h"
#include "ui/components/highlight_choices.h"
#include "ui/components/label.h"
#include "ui/components/mode_choices.h"
#include "ui/components/pictogram.h"
#include "ui/components/plate.h"
#include "ui/components/scroll_view.h"
#include "ui/components/stack.h"
#include "ui/components/switcher.h"
#include "ui/preference_controls.h"
#include "ui/settings_pages.h"
#include "ui/wayland_notice.h"

#include <QLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int margin = 16;
constexpr int partSpacing = 12;
constexpr int smallestGap = 6;   // between the parts of a section
constexpr int buttonPadding = 4; // inside a button around what is seen of it
constexpr TextStyle secondaryCaption = captionText.toned(Tone::secondary);

std::function<void()> opening(ViewContext& view, AppWindow window) {
    return [&state = view.state(), window] {
        if (state.openWindow) {
            state.openWindow(window);
        }
    };
}

// All that scrolls ends where the other parts do.
QWidget* insetSection(QWidget* section) {
    return column(0, {section})->padded({margin, 0, margin - ScrollView::gutter, 0});
}

QWidget* inset(QWidget* part) {
    return column(0, {part})->padded(margin, 0);
}

QWidget* header(ViewContext& view) {
    auto* texts = column(2, {label(view, Text::name("Vantrel"), {18, QFont::Bold}),
                             paragraph(view, tagline, secondaryCaption)});
    auto* settings = iconButton(view, "gearshape", 16, Tone::secondary, Text{"Settings", "设置"},
                                opening(view, AppWindow::settings));
    return row(10, {new BrandMark(38), texts, settings})
        ->padded({margin, 0, margin - buttonPadding, 0});
}

QWidget* footer(ViewContext& view) {
    constexpr TextStyle style{12, QFont::Normal, Tone::secondary};
    return row(8, {labelButton(view, "gearshape", Text{"Settings", "设置"}, style,
                               opening(view, AppWindow::settings)),
                   labelButton(view, "questionmark.circle", Text{"Help", "帮助"}, style,
                               opening(view, AppWindow::help)),
                   spacer(),
                   labelButton(view, "power", Text{"Quit", "退出"}, style,
                               [&view] { view.desktop().application.terminate(); })})
        ->padded(margin - buttonPadding, 0);
}

// Parts as far apart as there is room for: how high they are is a matter of the desktop's font.
QWidget* section(std::initializer_list<QWidget*> parts) {
    auto* spread = column(smallestGap / 2, {});
    for (auto* part : parts) {
        if (part != *parts.begin()) {
            spread->add(spacer());
        }
        spread->add(part);
    }
    if (parts.size() > 1) {
        spread->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    }
    return new ScrollView(spread->padded(2, 3));
}

QWidget* highlightSection(ViewContext& view) {
    const auto wording = [&view](bool english) {
        return (compositorHidesPresses(view)
                    ? Text{"This compositor tells no program of clicks in other programs.",
                           "此合成器不会告知程序其他程序中的点击。"}
                    : Text{"Click monitoring could not start. Retry in Settings.",
                           "点击监听未能启动，请在设置中重试。"})(english);
    };
    auto* notice = paragraph(view, wording, secondaryCaption);
    return section(
        {new HighlightChoices(view, Density::compact), highlightColors(view),
         highlightDiameter(view), highlightOpacity(view), idleToggle(view, ControlSize::small),
         column(
             smallestGap,
             {popUpPicker(view, Text{"Click effects", "点击反馈"},
                          view.binding(&AppPreferences::click, &ClickSettings::style),
                          clickStyles()),
              view.showWhile(notice, [&view] { return !view.state().clickAvailable().get(); })})});
}

QWidget* laserSection(ViewContext& view) {
    return section({new EffectPreview(view, Text{"Local laser preview", "激光局部预览"},
                                      {.laser = true, .height = 70}),
                    laserColors(view), laserDiameter(view), laserGlow(view, Text{"Glow", "光晕"})});
}

QWidget* offSection(ViewContext& view) {
    auto* symbol = column(0, {new Symbol("cursorarrow", 12, Tone::secondary)});
    symbol->padded({0, 2, 0, 0});
    auto* text = paragraph(view,
                           Text{"Effects are off. Choose Highlight or Laser, or preview them in "
                                "Settings.",
                                "效果已关闭。选择高亮或激光笔开启；也可先在设置中预览。"},
                           calloutText.toned(Tone::secondary));
    return section({new Plate({.fill = {Tone::primary, 0.035}},
                              row(8, {hugging(symbol), text}, Alignment::leading)->padded(12))});
}

// Where the desktop draws the marks, the program has displays only for its windows.
std::optional<double> screenHeight(const ViewContext& view) {
    if (const auto* screen = QGuiApplication::primaryScreen(); screen && hasNativeWindows()) {
        return availableAreaOf(*screen).height();
    }
    const auto& screens = view.desktop().screens.list();
    return screens.empty() ? std::nullopt : std::optional(screens.front().visibleFrame.height);
}

// What the screen leaves to the section and the parts that are always there.
std::optional<double> availableHeight(const ViewContext& view, const QWidget* notice) {
    const auto height = screenHeight(view);
    if (!height) {
        return std::nullopt;
    }
    const int taken = notice != nullptr && hasWaylandNotice(view)
                          ? notice->heightForWidth(MenuPanel::ownWidth()) + partSpacing
                          : 0;
    return *height - taken;
}

QWidget* modeSection(ViewContext& view) {
    return new Switcher(view,
                        [&view] { return static_cast<std::size_t>(view.state().mode().get()); },
                        {offSection, highlightSection, laserSection});
}

} // namespace

int panelSectionHeight(CursorMode mode, std::optional<double> visibleHeight, double textScale) {
    const double smallest = 76 * textScale;
    const double otherParts = 350 * textScale; // of the panel and around it
    const double preferred = mode == CursorMode::highlight ? 286 * textScale
                             : mode == CursorMode::laser   ? 208 * textScale
                                                           : smallest;
    const double available = visibleHeight ? std::max(*visibleHeight - otherParts, smallest) : 450;
    return static_cast<int>(std::min(preferred, available));
}

int MenuPanel::ownWidth() {
    return qRound(340 * textScale());
}

MenuPanel::MenuPanel(ViewContext& view)
    : MenuPanel(view, waylandNotice(view, {margin, 0, margin - buttonPadding, 0}),
                modeSection(view)) {}

MenuPanel::MenuPanel(ViewContext& view, QWidget* notice, QWidget* section)
    : VantrelBackground(
          column(partSpacing, {header(view), inset(modeBadge(view)), notice, inset(divider()),
                               inset(new ModeChoices(view, Density::compact)),
                               insetSection(section), inset(divider()), footer(view)})
              ->padded(0, margin)) {
    setFixedWidth(ownWidth());
    const auto fit = [&view, notice, section] {
        section->setFixedHeight(panelSectionHeight(view.state().mode().get(),
                                                   availableHeight(view, notice), textScale()));
    };
    view.follow(section, fit);
    screens_ = view.desktop().screens.onChange([this, fit] {
        fit();
        settleLayout(*this);
    });
}

} // namespace vantrel
