#include "ui/help_view.h"

#include "ui/components/accessibility.h"
#include "ui/components/buttons.h"
#include "ui/components/label.h"
#include "ui/components/scroll_view.h"
#include "ui/components/section_card.h"
#include "ui/components/stack.h"
#include "ui/components/style.h"

namespace vantrel {

namespace {

QWidget* gettingStarted(ViewContext& view) {
    return new SectionCard(
        view, Text{"Getting Started", "快速使用"},
        paragraph(view, Text{"Adjust Laser color, dot size and glow in the menu bar Laser panel or "
                             "Settings → Effects. Overlays pass clicks through; mouse click "
                             "effects need no additional Input Monitoring access and are enabled "
                             "only in Highlight mode.",
                             "激光笔颜色、光点大小和光晕可在菜单栏激光模式面板或设置 → "
                             "效果中调整。所有效果不拦截点击；鼠标点击反馈无需额外输入监控授权，仅"
                             "在高亮模式启用。"}));
}

QWidget* displays(ViewContext& view) {
    return paragraph(
        view, Text{"Effects follow the pointer across displays, keep their size in macOS points, "
                   "and render at each display's backing scale. Overlays rebuild when displays are "
                   "connected, disconnected or rearranged.",
                   "效果跟随鼠标跨显示器移动，尺寸按 macOS "
                   "逻辑点保持一致，并按各屏幕的缩放比例绘制。连接、断开或重新排列显示器后会重新建"
                   "立覆盖层。"});
}

QWidget* recording(ViewContext& view) {
    return paragraph(
        view,
        Text{
            "For recording or sharing, prefer a whole display or screen region, and choose the "
            "display containing the pointer. Application or window capture usually omits the "
            "separate Vantrel overlay. Hiding the recorder's system cursor does not hide our "
            "effects. Compatibility still needs testing for each recorder version and capture "
            "mode; make a short test recording first.",
            "录屏或共享时请优先选择整个显示器，或屏幕区域；选择鼠标活动所在的屏幕。单个应用或窗口捕"
            "获通常不会包含独立的 Vantrel "
            "覆盖层。隐藏录屏软件的系统鼠标选项，也不等于隐藏我们的效果。正式兼容性仍需按录屏软件、"
            "版本和捕获方式验证，录制前请先做短片测试。"});
}

// The configuration of the links does not change while the program runs.
QWidget* linkButton(ViewContext& view, const Text& title, ReleaseLink link) {
    auto* button = pushButton(view, title, [&state = view.state(), link] { state.openLink(link); });
    button->setEnabled(releaseURL(view.desktop().bundle, link).has_value());
    return button;
}

QWidget* links(ViewContext& view) {
    constexpr double largeText = 1.2; // from which on they would not fit beside each other
    auto* privacy = linkButton(view, {"Privacy policy", "隐私政策"}, ReleaseLink::privacy);
    auto* terms = linkButton(view, {"Terms of use", "使用条款"}, ReleaseLink::terms);
    auto* support = linkButton(view, {"Contact support", "联系支持"}, ReleaseLink::support);
    return textScale() < largeText ? row(8, {privacy, terms, support, spacer()})
                                   : column(8, {privacy, terms, support});
}

constexpr Text title{"Help and Privacy", "帮助与隐私"};

QWidget* content(ViewContext& view) {
    auto* heading = paragraph(view, title, titleText.weighted(QFont::Bold));
    auto* recordingCard = new SectionCard(view, Text{"Displays and Recording", "多显示器与录屏"},
                                          column(16, {displays(view), recording(view)}));
    auto* linksCard =
        new SectionCard(view, Text{"Public policies and support", "公开政策与支持"}, links(view));
    return column(22, {heading, gettingStarted(view), recordingCard, linksCard})
        ->padded({24, 24, 24 - ScrollView::gutter, 24});
}

} // namespace

HelpView::HelpView(ViewContext& view) : HelpView(view, new ScrollView(content(view))) {}

// The text is what the keyboard is at first: there may be no link to go to.
HelpView::HelpView(ViewContext& view, ScrollView* text) : VantrelBackground(text) {
    text->setFocusPolicy(Qt::StrongFocus);
    nameForScreenReaders(view, text, title);
}

} // namespace vantrel
