#include "ui/settings_view.h"

#include "ui/components/brand_mark.h"
#include "ui/components/buttons.h"
#include "ui/components/choice_button.h"
#include "ui/components/label.h"
#include "ui/components/mode_choices.h"
#include "ui/components/pictogram.h"
#include "ui/components/scroll_view.h"
#include "ui/components/stack.h"
#include "ui/components/switcher.h"
#include "ui/preference_controls.h"
#include "ui/settings_pages.h"
#include "ui/wayland_notice.h"

#include <QHideEvent>
#include <QKeyEvent>
#include <QMessageBox>
#include <QShowEvent>

#include <array>

namespace vantrel {

namespace {

struct Tab {
    Text label;
    std::string_view symbol;
    Text subtitle;
};

// In the order of SettingsTab.
constexpr std::array<Tab, allCases<SettingsTab>().size()> tabs{{
    {{"Appearance", "外观"},
     "sun.max",
     {"Choose a clear style that makes your cursor easy to follow.",
      "选择醒目的样式，让观众轻松跟随鼠标。"}},
    {{"Effects", "效果"},
     "sparkles",
     {"Add click feedback and focus attention with a laser pointer.",
      "为点击添加反馈，用激光笔突出重点。"}},
    {{"Controls", "控制"},
     "keyboard",
     {"Switch presentation modes with your preferred shortcuts.",
      "用熟悉的快捷键，即时切换演示模式。"}},
    {{"General", "通用"},
     "gearshape",
     {"Make Vantrel work the way you do.", "让 Vantrel 按你的习惯工作。"}},
    {{"About", "关于"},
     "info.circle",
     {"A simple, clear cursor tool for presentations.", "简单、清晰的鼠标演示工具。"}},
}};
constexpr Text laserSubtitle{"Adjust the laser dot color, size and glow to focus attention.",
                             "调整激光光点的颜色、大小和光晕，让重点更清晰。"};

constexpr ChoiceLook tabLook{
    .selected = {.fill = {Tone::accent, 0.1}, .radius = 10},
    .plain = {.radius = 10},
};

const Tab& tabOf(SettingsTab tab) {
    return tabs[static_cast<std::size_t>(tab)];
}

QWidget* header(ViewContext& view) {
    return row(12, {new BrandMark(42), label(view, Text::name("Vantrel"), {20, QFont::Bold}),
                    spacer(), modeBadge(view)})
        ->padded({20, 18, 20, 12});
}

QWidget* tabButton(ViewContext& view, SettingsTab tab) {
    const auto isSelected = [&view, tab] { return view.state().selectedTab().get() == tab; };
    const auto& [title, symbolName, subtitle] = tabOf(tab);
    auto* symbol = new Symbol(symbolName, 15);
    auto* text = label(view, title, {11, QFont::Medium})->centered();
    auto* button =
        new ChoiceButton(view,
                         {title, isSelected, [&state = view.state(), tab] { state.selectTab(tab); },
                          QAccessible::PageTab},
                         tabLook, column(5, {symbol, text}, Alignment::center)->padded(0, 9));
    view.follow(button, [symbol, text, isSelected] {
        const auto tone = isSelected() ? Tone::accentText : Tone::secondary;
        symbol->setTone(tone);
        text->setTone(tone);
    });
    return button;
}

std::vector<QWidget*> makeTabButtons(ViewContext& view) {
    std::vector<QWidget*> buttons;
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        buttons.push_back(tabButton(view, static_cast<SettingsTab>(i)));
    }
    return buttons;
}

QWidget* tabBar(ViewContext& view, const std::vector<QWidget*>& buttons) {
    auto* bar = new ChoiceRow(view, 4, Text{"Settings", "设置"}, QAccessible::PageTabList);
    for (auto* button : buttons) {
        bar->add(button);
    }
    return row(0, {bar})->padded({16, 0, 16, 12});
}

Wording subtitleOf(ViewContext& view, SettingsTab tab) {
    return [&state = view.state(), tab](bool english) {
        const bool ofLaser =
            tab == SettingsTab::appearance && state.mode().get() == CursorMode::laser;
        return (ofLaser ? laserSubtitle : tabOf(tab).subtitle)(english);
    };
}

QWidget* page(ViewContext& view, SettingsTab tab, QWidget* content) {
    auto* heading =
        column(5, {paragraph(view, tabOf(tab).label, {24, QFont::Bold}),
                   paragraph(view, subtitleOf(view, tab), calloutText.toned(Tone::secondary))});
    return new ScrollView(
        column(16, {heading, content})->padded({20, 20, 20 - ScrollView::gutter, 20}));
}

Switcher::Builder building(SettingsTab tab, const Switcher::Builder& content) {
    return [tab, content](ViewContext& view) { return page(view, tab, content(view)); };
}

QWidget* pages(ViewContext& view, const std::function<void()>& reset) {
    const auto general = [reset](ViewContext& part) { return generalPage(part, reset); };
    return new Switcher(
        view, [&view] { return static_cast<std::size_t>(view.state().selectedTab().get()); },
        {building(SettingsTab::appearance, appearancePage),
         building(SettingsTab::effects, effectsPage), building(SettingsTab::controls, controlsPage),
         building(SettingsTab::general, general), building(SettingsTab::about, aboutPage)});
}

QMessageBox* makeResetAlert(ViewContext& view, QWidget* parent) {
    auto* alert = new QMessageBox(parent);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setAttribute(Qt::WA_WindowPropagation); // of the tint
    alert->setIconPixmap(pictogram("exclamationmark.triangle", 40,
                                   toneColor(Tone::orange, parent->palette()),
                                   parent->devicePixelRatio()));
    alert->setWindowTitle(QStringLiteral("Vantrel"));
    alert->setFont(bodyText.weighted(QFont::DemiBold).font());
    auto* reset = pushButton(
        view, Text{"Reset", "重置"}, [&state = view.state()] { state.resetPreferences(); },
        ButtonRole::destructive);
    auto* cancel = pushButton(view, Text{"Cancel", "取消"}, [] {});
    alert->addButton(reset, QMessageBox::DestructiveRole);
    alert->addButton(cancel, QMessageBox::RejectRole);
    alert->setDefaultButton(cancel);
    alert->setEscapeButton(cancel);
    view.follow(alert, [alert, &view] {
        alert->setText(view.say(Text{"Reset all preferences?", "重置全部偏好设置？"}));
    });
    return alert;
}

} // namespace

SettingsView::SettingsView(ViewContext& view) : SettingsView(view, makeTabButtons(view)) {}

SettingsView::SettingsView(ViewContext& view, const std::vector<QWidget*>& tabButtons)
    : VantrelBackground(
          column(0, {header(view),
                     row(0, {new ModeChoices(view, Density::compact)})->padded({20, 0, 20, 14}),
                     marksNotice(view, {20, 0, 16, 12}), tabBar(view, tabButtons), divider(),
                     pages(view, [this] { confirmReset(); })})),
      view_(view),
      tabButtons_(tabButtons) {}

QMessageBox* SettingsView::resetAlert() const {
    return alert_;
}

void SettingsView::confirmReset() {
    if (alert_ == nullptr) {
        alert_ = makeResetAlert(view_, this);
        alert_->open();
    }
}

// Enter on the first stop would switch the effects off.
void SettingsView::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) {
        tabButtons_[static_cast<std::size_t>(view_.state().selectedTab().get())]->setFocus();
    }
}

void SettingsView::keyPressEvent(QKeyEvent* event) {
    const bool next = event->matches(QKeySequence::NextChild);
    if (!next && !event->matches(QKeySequence::PreviousChild)) {
        VantrelBackground::keyPressEvent(event);
        return;
    }
    const auto shown = static_cast<std::size_t>(view_.state().selectedTab().get());
    const auto step = next ? 1 : tabs.size() - 1;
    view_.state().selectTab(static_cast<SettingsTab>((shown + step) % tabs.size()));
}

// Nobody could see any more what the alert asks about.
void SettingsView::hideEvent(QHideEvent* event) {
    if (alert_ != nullptr && !event->spontaneous()) {
        alert_->reject();
    }
}

} // namespace vantrel
