#include "ui/components/buttons.h"
#include "ui/components/effect_preview.h"
#include "ui/components/highlight_choices.h"
#include "ui/components/label.h"
#include "ui/components/section_card.h"
#include "ui/components/stack.h"
#include "ui/components/switcher.h"
#include "ui/preference_controls.h"
#include "ui/settings_pages.h"

namespace vantrel {

namespace {

constexpr int spacing = 16;

QWidget* colorRow(ViewContext& view, QWidget* choices) {
    return row(8, {label(view, Text{"Color", "颜色"}, calloutText), spacer(), choices});
}

QWidget* waitTime(ViewContext& view) {
    std::vector<Choice<double>> choices;
    for (const double seconds : idleChoices.values) {
        auto title = QString::number(seconds) + QStringLiteral(" s");
        choices.push_back(
            {seconds, [title = std::move(title)](bool /*english*/) { return title; }});
    }
    return popUpPicker(view, Text{"Wait time", "等待时间"},
                       view.binding(&AppPreferences::highlight, &HighlightSettings::idleSeconds),
                       choices);
}

QWidget* highlightCard(ViewContext& view) {
    return new SectionCard(
        view, Text{"Cursor Highlight", "鼠标高亮"},
        column(spacing, {new HighlightChoices(view, Density::regular),
                         new EffectPreview(view, Text{"Local highlight preview", "高亮局部预览"},
                                           {.height = 104}),
                         colorRow(view, highlightColors(view)), highlightDiameter(view),
                         highlightOpacity(view), divider(), idleToggle(view, ControlSize::regular),
                         view.showWhile(waitTime(view), [&view] {
                             return view.preferences().highlight.idleHide;
                         })}));
}

QWidget* laserCard(ViewContext& view) {
    return new SectionCard(
        view, Text{"Laser Pointer", "激光笔"},
        column(spacing, {new EffectPreview(view, Text{"Local laser preview", "激光局部预览"},
                                           {.laser = true, .height = 100}),
                         colorRow(view, laserColors(view)), laserDiameter(view),
                         laserGlow(view, Text{"Glow", "光晕强度"})}));
}

QWidget* buttonToggles(ViewContext& view) {
    const auto toggle = [&view](const Text& title, bool ClickSettings::*field) {
        return hugging(new SwitchToggle(view, title, view.binding(&AppPreferences::click, field),
                                        ControlSize::small));
    };
    return row(24, {toggle({"Left button", "左键"}, &ClickSettings::left),
                    toggle({"Right button", "右键"}, &ClickSettings::right), spacer()});
}

QWidget* clickCard(ViewContext& view) {
    return new SectionCard(
        view, Text{"Click Effects", "点击反馈"},
        column(
            spacing,
            {segmentedPicker(view, Text{"Type", "类型"},
                             view.binding(&AppPreferences::click, &ClickSettings::style),
                             clickStyles()),
             buttonToggles(view),
             new EffectPreview(view, Text{"Local click preview", "点击局部预览"}, {.height = 120}),
             paragraph(view,
                       Text{"Click this preview to test. Color follows Highlight; effects are "
                            "available only in Highlight mode.",
                            "点击此预览区域测试。颜色跟随高亮，仅在 Highlight 模式使用。"},
                       captionText.toned(Tone::secondary)),
             clickMonitorNotice(view)}));
}

} // namespace

QWidget* appearancePage(ViewContext& view) {
    return new Switcher(
        view,
        [&view] { return std::size_t{view.state().mode().get() == CursorMode::laser ? 1U : 0U}; },
        {highlightCard, laserCard});
}

QWidget* effectsPage(ViewContext& view) {
    return column(spacing, {clickCard(view), laserCard(view)});
}

bool compositorHidesPresses(const ViewContext& view) {
    return view.state().means().drawing == Means::layerShell;
}

QWidget* clickMonitorNotice(ViewContext& view) {
    const auto wording = [&view](bool english) {
        return (compositorHidesPresses(view)
                    ? Text{"This compositor tells no program of clicks in other programs. "
                           "Highlight still works.",
                           "此合成器不会告知程序其他程序中的点击，高亮仍可使用。"}
                    : Text{"Click monitoring could not start. Highlight still works. Retry or "
                           "reopen the app.",
                           "点击监听未能启动，高亮仍可使用。请重试，或退出后重新打开应用。"})(
            english);
    };
    auto* text = symbolLabel(view, "info.circle", Tone::primary, wording, captionText);
    auto* retry = pushButton(view, Text{"Retry click monitoring", "重试点击监听"},
                             [&state = view.state()] { state.apply(); });
    return view.showWhile(
        column(8, {text, view.showWhile(retry, [&view] { return !compositorHidesPresses(view); })}),
        [&view] { return !view.state().clickAvailable().get(); });
}

} // namespace vantrel
