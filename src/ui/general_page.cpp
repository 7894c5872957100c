#include "ui/components/buttons.h"
#include "ui/components/label.h"
#include "ui/components/pickers.h"
#include "ui/components/section_card.h"
#include "ui/components/stack.h"
#include "ui/components/switch_toggle.h"
#include "ui/settings_pages.h"

namespace vantrel {

namespace {

// The state writes the preference itself, when the desktop agreed.
SwitchToggle* launchToggle(ViewContext& view) {
    auto& state = view.state();
    return new SwitchToggle(
        view, Text{"Launch at login", "登录时启动"},
        {.get = [&state] { return state.preferences().get().launchAtLogin; },
         .set = [&state](const bool& enabled) { state.setLaunchAtLogin(enabled); }});
}

QWidget* systemMessage(ViewContext& view) {
    const auto& message = view.state().systemMessage();
    const auto wording = [&message](bool /*english*/) {
        return QString::fromStdString(message.get().value_or(std::string()));
    };
    return view.showWhile(paragraph(view, wording, captionText.toned(Tone::secondary))->announced(),
                          [&message] { return message.get().has_value(); });
}

QWidget* languageCard(ViewContext& view) {
    return new SectionCard(
        view, Text{"Language and Startup", "语言与启动"},
        column(16,
               {popUpPicker(view, Text{"Language", "语言"}, view.binding(&AppPreferences::language),
                            {{AppLanguage::system, Text{"Follow System", "跟随系统"}},
                             {AppLanguage::chinese, Text::name("简体中文")},
                             {AppLanguage::english, Text::name("English")}}),
                launchToggle(view), systemMessage(view)}));
}

QWidget* localCard(ViewContext& view, const std::function<void()>& reset) {
    return new SectionCard(
        view, Text{"Local Preferences", "本地设置"},
        column(16, {paragraph(view,
                              Text{"Preferences stay on this Mac. We do not record pointer "
                                   "coordinates, click history, keyboard input or screen content.",
                                   "偏好设置仅保存在本机。我们不记录鼠标坐标、点击历史、键盘输入或"
                                   "屏幕内容。"},
                              bodyText.toned(Tone::secondary)),
                    pushButton(view, Text{"Reset all preferences…", "重置全部偏好设置…"}, reset,
                               ButtonRole::destructive)}));
}

} // namespace

QWidget* generalPage(ViewContext& view, const std::function<void()>& reset) {
    return column(16, {languageCard(view), localCard(view, reset)});
}

} // namespace vantrel
