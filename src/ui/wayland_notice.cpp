#include "ui/wayland_notice.h"

#include "ui/components/buttons.h"
#include "ui/components/label.h"
#include "ui/components/stack.h"

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

// Of a compositor that lets programs draw, and tells them where the pointer is as a rule.
constexpr Text hiddenPointer{
    "The compositor does not tell where the pointer is, as while something records it, or without "
    "a "
    "mouse. Let the recorder leave the pointer out.",
    "合成器未告知指针位置，例如正在录制指针或没有鼠标时。请让录制程序不包含指针。"};

// Those that do so in newer versions than this one.
struct WayOut {
    std::string_view compositor;
    Text text;
};
constexpr std::array waysOut{
    WayOut{"sway",
           {" From sway 1.11 on, effects appear over every window.",
            "从 sway 1.11 起，效果可显示在所有窗口上。"}},
    WayOut{"labwc",
           {" From labwc 0.9 on, effects appear over every window.",
            "从 labwc 0.9 起，效果可显示在所有窗口上。"}},
};

Text wayOutOf(std::string_view compositor) {
    const auto* found = std::ranges::find(waysOut, compositor, &WayOut::compositor);
    return found == waysOut.end() ? Text{} : found->text;
}

// What there is to say of a Wayland session in which the desktop does not draw the marks, and what
// it says of X programs does not hold where no X server is in use.
Text waylandText(MarksState marks, bool inPlasma, bool overXPrograms) {
    const bool isHopeless = marks == MarksState::none || marks == MarksState::unsupported ||
                            marks == MarksState::failed;
    if (isHopeless && !overXPrograms) {
        return {"Nothing in this session can draw the marks or take the shortcuts. Commands and "
                "settings work.",
                "此会话中无法绘制标记，也无法接收快捷键。命令和设置仍可使用。"};
    }
    switch (marks) {
    case MarksState::none:
    case MarksState::available:
        break;
    case MarksState::off:
        return {
            "GNOME can draw the marks over every window, and take the shortcuts everywhere. The "
            "extension that does so is switched off.",
            "GNOME 可以在所有窗口上绘制标记，并在任何地方接收快捷键。"
            "执行此任务的扩展已关闭。"};
    case MarksState::needsLogin:
        return {"Log out and in again once: then GNOME draws the marks over every window.",
                "请注销并重新登录一次，之后 GNOME 会在所有窗口上绘制标记。"};
    case MarksState::otherVersion:
        return {
            "GNOME runs the extension of another version of Vantrel. Log out and in again once.",
            "GNOME 正在运行其他版本 Vantrel 的扩展。请注销并重新登录一次。"};
    case MarksState::busy:
        if (inPlasma) {
            return {"KWin draws the marks of another Vantrel in this session.",
                    "KWin 正在绘制此会话中另一个 Vantrel 的标记。"};
        }
        return {"GNOME draws the marks of another Vantrel in this session.",
                "GNOME 正在绘制此会话中另一个 Vantrel 的标记。"};
    case MarksState::unsupported:
        return {"This version of GNOME does not take the extension that draws the marks. Effects "
                "appear only over windows of X programs.",
                "此版本的 GNOME 不接受绘制标记的扩展。效果仅显示在 X 程序的窗口上。"};
    case MarksState::failed:
        if (inPlasma) {
            return {"The script that draws the marks does not work in KWin. Effects appear only "
                    "over windows of X programs.",
                    "绘制标记的脚本在 KWin 中无法工作。效果仅显示在 X 程序的窗口上。"};
        }
        return {"The extension that draws the marks does not work in GNOME. Effects appear only "
                "over windows of X programs.",
                "绘制标记的扩展在 GNOME 中无法工作。效果仅显示在 X 程序的窗口上。"};
    }
    return {"In a Wayland session, effects and shortcuts work only while an X "
            "program has the keyboard. Effects appear only over windows of X "
            "programs, and hide when the pointer rests for 3 seconds.",
            "在 Wayland 会话中，效果和快捷键仅在 X 程序接收键盘输入时有效。"
            "效果仅显示在 X 程序的窗口上，鼠标静止 3 秒后隐藏。"};
}

// Who has dismissed that nothing can be done has not dismissed what can.
std::string_view dismissedKey(MarksState marks) {
    return marks == MarksState::none ? waylandNoticeDismissedKey : marksNoticeDismissedKey;
}

bool lacksPointer(const SessionMeans& means) {
    return means.drawing == Means::layerShell && means.pointer == Means::none;
}

bool lacksDrawing(const SessionMeans& means) {
    return means.drawing == Means::xwayland || means.drawing == Means::none;
}

// Whatever the desktop itself comes to draw.
bool mayLackSomething(const ViewContext& view) {
    const auto means = meansOf(view.desktop().application.offer());
    return lacksDrawing(means) || means.drawing == Means::layerShell;
}

QString noticeText(const ViewContext& view, bool english) {
    const auto means = view.state().means();
    if (lacksPointer(means)) {
        return hiddenPointer(english);
    }
    const auto& desktop = view.desktop();
    const auto marks = view.state().marks().get();
    const bool overXPrograms = means.drawing == Means::xwayland;
    const auto text = waylandText(marks, desktop.marks.drawer() == "kwin", overXPrograms);
    return text(english) + wayOutOf(desktop.application.compositor())(english);
}

// What passes by itself needs none.
QWidget* dismissButton(ViewContext& view) {
    auto* button = iconButton(view, "xmark.circle", 13, Tone::secondary,
                              Text{"Dismiss notice", "关闭提示"}, [&view] {
                                  const auto key = dismissedKey(view.state().marks().get());
                                  view.desktop().userDefaults.setBoolean(key, true);
                                  view.refresh();
                              });
    return view.showWhile(button, [&view] { return !lacksPointer(view.state().means()); });
}

// With a button for it, or null, at its end.
QWidget* notice(ViewContext& view, const QMargins& around, QWidget* button,
                const std::function<bool()>& isShown) {
    auto* text = symbolLabel(
        view, "info.circle", Tone::secondary,
        [&view](bool english) { return noticeText(view, english); },
        captionText.toned(Tone::secondary));
    auto* enable =
        pushButton(view, Text{"Switch On", "开启"}, [&view] { view.state().enableMarks(); });
    const auto isOff = [&view] { return view.state().marks().get() == MarksState::off; };
    return view.showWhile(column(6, {row(8, {text, button}, Alignment::leading),
                                     view.showWhile(hugging(enable), isOff)})
                              ->padded(around),
                          isShown);
}

} // namespace

bool hasWaylandNotice(const ViewContext& view) {
    const auto means = view.state().means();
    return lacksPointer(means) ||
           (lacksDrawing(means) &&
            !view.desktop().userDefaults.boolean(dismissedKey(view.state().marks().get())));
}

QWidget* waylandNotice(ViewContext& view, const QMargins& around) {
    return mayLackSomething(view) ? notice(view, around, dismissButton(view),
                                           [&view] { return hasWaylandNotice(view); })
                                  : nullptr;
}

QWidget* marksNotice(ViewContext& view, const QMargins& around) {
    const auto isShown = [&view] {
        const auto means = view.state().means();
        return lacksPointer(means) ||
               (lacksDrawing(means) && view.state().marks().get() != MarksState::none);
    };
    return mayLackSomething(view) ? notice(view, around, nullptr, isShown) : nullptr;
}

} // namespace vantrel
