#include "ui/components/accessibility.h"
#include "ui/components/buttons.h"
#include "ui/components/label.h"
#include "ui/components/section_card.h"
#include "ui/components/shortcut_recorder.h"
#include "ui/components/stack.h"
#include "ui/compositor_binding.h"
#include "ui/settings_pages.h"

#include <QClipboard>
#include <QGuiApplication>

namespace vantrel {

namespace {

struct ShortcutSlot {
    CursorMode mode;
    std::optional<Shortcut> AppPreferences::*field;
};
constexpr ShortcutSlot highlightSlot{CursorMode::highlight, &AppPreferences::highlightShortcut};
constexpr ShortcutSlot laserSlot{CursorMode::laser, &AppPreferences::laserShortcut};

QString titleOf(const ViewContext& view, const ShortcutSlot& slot) {
    return QString::fromStdString(view.state().shortcutTitle(slot.mode));
}

QWidget* recorder(ViewContext& view, const ShortcutSlot& slot) {
    auto* recorder =
        new ShortcutRecorder(view, view.binding(slot.field), Text{"Record shortcut", "录入快捷键"});
    nameForScreenReaders(view, recorder, [&view, slot](bool english) {
        return titleOf(view, slot) +
               (english ? QStringLiteral(" shortcut") : QStringLiteral("快捷键"));
    });
    return recorder;
}

QWidget* clearButton(ViewContext& view, const ShortcutSlot& slot) {
    const auto shortcut = view.binding(slot.field);
    auto* button =
        iconButton(view, "xmark.circle", 13, Tone::secondary, Text{"Clear shortcut", "清除快捷键"},
                   [shortcut] { shortcut.set(std::nullopt); }, {4, 4, 0, 4});
    describeForScreenReaders(view, button, [&view, slot](bool) { return titleOf(view, slot); });
    return button;
}

QWidget* shortcutRow(ViewContext& view, const ShortcutSlot& slot) {
    return row(8, {paragraph(view, [&view, slot](bool) { return titleOf(view, slot); }),
                   recorder(view, slot), clearButton(view, slot)});
}

// Whatever the code, there is a text.
QWidget* shortcutProblem(ViewContext& view) {
    const auto& error = view.state().hotkeyError();
    const auto wording = [&error](bool english) {
        const bool duplicate = error.get() == hotkeyerror::duplicate;
        return (duplicate ? Text{"Shortcuts must be different.", "两个快捷键不能相同。"}
                          : Text{"Registration failed. Choose another shortcut.",
                                 "快捷键注册失败，请选择其他组合。"})(english);
    };
    auto* line = paragraph(view, wording, captionText.toned(Tone::orange))->announced();
    return view.showWhile(line->beside("exclamationmark.triangle", Tone::orange),
                          [&error] { return error.get().has_value(); });
}

void restoreDefaults(ViewContext& view) {
    view.binding(&AppPreferences::highlightShortcut).set(Shortcut::defaultHighlight());
    view.binding(&AppPreferences::laserShortcut).set(Shortcut::defaultLaser());
}

QWidget* shortcutsCard(ViewContext& view) {
    return new SectionCard(
        view, Text{"Global Shortcuts", "全局快捷键"},
        column(16,
               {shortcutRow(view, highlightSlot), shortcutRow(view, laserSlot),
                shortcutProblem(view),
                paragraph(view,
                          Text{"Click to record a shortcut with Control, Option or Command. Esc "
                               "cancels; Delete clears.",
                               "点击快捷键开始录入，组合中需包含 Control、Option 或 Command。Esc "
                               "取消，Delete 清除。"},
                          captionText.toned(Tone::secondary)),
                view.showWhile(
                    paragraph(view,
                              Text{"Combinations that the desktop uses itself cannot be recorded.",
                                   "无法录入桌面环境自身使用的组合键。"},
                              captionText.toned(Tone::secondary)),
                    [&view] { return !view.desktop().hotKeys.canLeaveKeys(); }),
                pushButton(view, Text{"Restore default shortcuts", "恢复默认快捷键"},
                           [&view] { restoreDefaults(view); })}));
}

// Where the compositor has the keys to itself: what it can be told to do at them.
bool bindsKeysItself(const ViewContext& view) {
    const auto shortcuts = view.state().means().shortcuts;
    return (shortcuts == Means::xwayland || shortcuts == Means::none) &&
           view.state().marks().get() == MarksState::none;
}

Text keysText(Means shortcuts) {
    if (shortcuts == Means::none) {
        return {"This compositor has no shortcuts for programs, so those above do not work. Put "
                "these lines into its configuration:",
                "此合成器不提供程序快捷键，因此上面的快捷键无效。请将以下内容加入其配置："};
    }
    return {"This compositor has no shortcuts for programs, so those above work only while an X "
            "program has the keyboard. Put these lines into its configuration:",
            "此合成器不提供程序快捷键，因此上面的快捷键仅在 X "
            "程序接收键盘输入时有效。请将以下内容加入其配置："};
}

QWidget* bindingRow(ViewContext& view, const ShortcutSlot& slot, const char* command) {
    const auto line = [&view, field = slot.field, command] {
        return QString::fromStdString(compositorBinding(view.desktop().application.compositor(),
                                                        view.preferences().*field, command));
    };
    auto* text = paragraph(view, [line](bool) { return line(); });
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* copy = pushButton(view, Text{"Copy", "复制"},
                            [line] { QGuiApplication::clipboard()->setText(line()); });
    describeForScreenReaders(view, copy, [line](bool) { return line(); });
    return row(8, {text, copy});
}

QWidget* bindingsCard(ViewContext& view) {
    return view.showWhile(
        new SectionCard(view, Text{"Shortcuts of the Compositor", "合成器的快捷键"},
                        column(12, {symbolLabel(view, "info.circle", Tone::primary,
                                                [&view](bool english) {
                                                    return keysText(view.state().means().shortcuts)(
                                                        english);
                                                }),
                                    bindingRow(view, highlightSlot, "vantrel toggle highlight"),
                                    bindingRow(view, laserSlot, "vantrel toggle laser")})),
        [&view] { return bindsKeysItself(view); });
}

QWidget* monitoringCard(ViewContext& view) {
    return new SectionCard(
        view, Text{"Click Monitoring", "点击监听"},
        column(16,
               {symbolLabel(
                    view, "checkmark.shield", Tone::primary,
                    Text{"Highlight, Laser and mouse click effects do not require additional Input "
                         "Monitoring or Accessibility access.",
                         "高亮、激光和鼠标点击反馈无需额外输入监控或辅助功能授权。"}),
                clickMonitorNotice(view),
                pushButton(view, Text{"Refresh monitoring", "刷新监听状态"},
                           [&state = view.state()] { state.apply(); })}));
}

} // namespace

QWidget* controlsPage(ViewContext& view) {
    return column(16, {shortcutsCard(view), bindingsCard(view), monitoringCard(view)});
}

} // namespace vantrel
