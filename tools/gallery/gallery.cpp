// Lays out all parts of the interface in one window, on a desktop in memory: nothing that is chosen
// here reaches the screen or the disk. QT_SCALE_FACTOR sets the scale.

#include "overlay/drawn_cursor.h"
#include "platform/headless/headless_desktop.h"
#include "platform/system_clock.h"
#include "ui/components/background.h"
#include "ui/components/brand_mark.h"
#include "ui/components/buttons.h"
#include "ui/components/color_choices.h"
#include "ui/components/effect_preview.h"
#include "ui/components/highlight_choices.h"
#include "ui/components/label.h"
#include "ui/components/mode_choices.h"
#include "ui/components/pickers.h"
#include "ui/components/pictogram.h"
#include "ui/components/section_card.h"
#include "ui/components/stack.h"
#include "ui/components/status_badge.h"
#include "ui/components/switch_toggle.h"
#include "ui/components/value_slider.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QKeyEvent>
#include <QScrollArea>
#include <QStyleFactory>

#include <cstdio>

namespace vantrel {
namespace {

constexpr TextStyle secondaryCaption = captionText.toned(Tone::secondary);

QWidget* header(ViewContext& view) {
    auto* badge = new StatusBadge(
        view,
        [&view](bool) {
            return QString::fromStdString(view.state().title(view.state().mode().get()));
        },
        [&view] { return view.state().mode().get() != CursorMode::off; });
    auto* name =
        column(2, {label(view, Text::name("Vantrel"), {20, QFont::Bold}),
                   label(view, Text{"Make your cursor easy to follow", "让鼠标更容易被看见"},
                         secondaryCaption)});
    return row(
        12, {new BrandMark(42), name, spacer(), badge,
             iconButton(view, "gearshape", 16, Tone::secondary, Text{"Settings", "设置"}, [] {})});
}

QWidget* highlightCard(ViewContext& view) {
    const auto color = view.binding(&AppPreferences::highlight, &HighlightSettings::color);
    auto* content = column(
        16,
        {highlightChoices(view, false),
         effectPreview(view, Text{"Local highlight preview", "高亮局部预览"}, {.height = 104}),
         row(8, {label(view, Text{"Color", "颜色"}, calloutText), spacer(),
                 colorChoices(view, color, Palette::highlight)}),
         valueSlider(view, Text{"Diameter", "直径"},
                     view.binding(&AppPreferences::highlight, &HighlightSettings::diameter),
                     {.low = 24, .high = 120, .suffix = "pt"}),
         valueSlider(view, Text{"Opacity", "不透明度"},
                     view.binding(&AppPreferences::highlight, &HighlightSettings::opacity),
                     {.low = 0.1, .high = 0.9, .suffix = "%", .percent = true}),
         divider(),
         new SwitchToggle(view, Text{"Hide when idle", "闲置时隐藏"},
                          view.binding(&AppPreferences::highlight, &HighlightSettings::idleHide)),
         popUpPicker(view, Text{"Click effects", "点击反馈"},
                     view.binding(&AppPreferences::click, &ClickSettings::style),
                     {{ClickStyle::none, Text{"None", "无"}},
                      {ClickStyle::ripple, Text{"Ripple", "涟漪"}},
                      {ClickStyle::pulse, Text{"Pulse", "脉冲"}}})});
    return new SectionCard(view, Text{"Cursor Highlight", "鼠标高亮"},
                           Text{"A card with a subtitle", "带副标题的卡片"}, content);
}

QWidget* laserCard(ViewContext& view) {
    auto* content = column(
        16,
        {effectPreview(view, Text{"Local laser preview", "激光局部预览"},
                       {.laser = true, .height = 100}),
         row(8, {label(view, Text{"Color", "颜色"}, calloutText), spacer(),
                 colorChoices(view, view.binding(&AppPreferences::laser, &LaserSettings::color),
                              Palette::laser)}),
         valueSlider(view, Text{"Dot diameter", "光点直径"},
                     view.binding(&AppPreferences::laser, &LaserSettings::diameter),
                     {.low = 6, .high = 24, .suffix = "pt"}),
         segmentedPicker(view, Text{"Glow", "光晕强度"},
                         view.binding(&AppPreferences::laser, &LaserSettings::glow),
                         {{GlowStrength::low, Text{"Low", "低"}},
                          {GlowStrength::medium, Text{"Medium", "中"}},
                          {GlowStrength::high, Text{"High", "高"}}}),
         row(24,
             {hugging(new SwitchToggle(view, Text{"Left button", "左键"},
                                       view.binding(&AppPreferences::click, &ClickSettings::left),
                                       ControlSize::small)),
              hugging(new SwitchToggle(view, Text{"Right button", "右键"},
                                       view.binding(&AppPreferences::click, &ClickSettings::right),
                                       ControlSize::small)),
              spacer()}),
         paragraph(
             view,
             Text{"Click this preview to test. Color follows Highlight; effects are available "
                  "only in Highlight mode.",
                  "点击此预览区域测试。颜色跟随高亮，仅在 Highlight 模式使用。"},
             secondaryCaption)});
    return new SectionCard(view, Text{"Laser Pointer", "激光笔"}, content);
}

QWidget* rowsCard(ViewContext& view) {
    auto* content = column(
        8, {actionRow(view, Text{"Privacy", "隐私说明"}, "hand.raised",
                      Text{"With a subtitle below", "下面的副标题"}, [] {}),
            divider(),
            actionRow(view, Text{"Terms of use", "使用条款"}, "doc.text", std::nullopt, [] {}),
            divider(),
            symbolLabel(
                view, "checkmark.shield", Tone::green,
                Text{"Highlight, Laser and mouse click effects do not require additional Input "
                     "Monitoring or Accessibility access.",
                     "高亮、激光和鼠标点击反馈无需额外输入监控或辅助功能授权。"}),
            symbolLabel(view, "exclamationmark.triangle", Tone::orange,
                        Text{"Shortcuts must be different.", "两个快捷键不能相同。"}, captionText),
            row(8, {pushButton(view, Text{"Restore default shortcuts", "恢复默认快捷键"}, [] {}),
                    pushButton(
                        view, Text{"Reset all…", "全部重置…"}, [] {}, ButtonRole::destructive),
                    spacer()}),
            row(4, {labelButton(view, "gearshape", Text{"Settings", "设置"},
                                calloutText.toned(Tone::secondary), [] {}),
                    labelButton(view, "questionmark.circle", Text{"Help", "帮助"},
                                calloutText.toned(Tone::secondary), [] {}),
                    spacer(),
                    labelButton(view, "power", Text{"Quit", "退出"},
                                calloutText.toned(Tone::secondary), [] {})})});
    return new SectionCard(view, Text{"Learn more", "了解更多"}, content);
}

QWidget* pictogramsCard(ViewContext& view) {
    auto* rows = column(10, {});
    Stack* line = nullptr;
    int count = 0;
    for (const std::string_view name : {"cursorarrow",
                                        "cursorarrow.rays",
                                        "cursorarrow.click",
                                        "scope",
                                        "nosign",
                                        "checkmark",
                                        "checkmark.circle.fill",
                                        "circle",
                                        "chevron.right",
                                        "gearshape",
                                        "questionmark.circle",
                                        "power",
                                        "sun.max",
                                        "sparkles",
                                        "keyboard",
                                        "info.circle",
                                        "xmark.circle",
                                        "exclamationmark.triangle",
                                        "checkmark.shield",
                                        "hand.raised",
                                        "doc.text",
                                        "slider.horizontal.3"}) {
        if (count++ % 11 == 0) {
            rows->add(line = row(12, {}));
        }
        line->add(new Symbol(name, 20));
    }
    return new SectionCard(view, Text{"Pictograms", "图标"}, rows);
}

QWidget* gallery(ViewContext& view) {
    auto* left = column(
        16, {modeChoices(view, true), highlightChoices(view, true), highlightCard(view), spacer()});
    auto* right = column(16, {modeChoices(view, false), laserCard(view), rowsCard(view),
                              pictogramsCard(view), spacer()});
    left->setFixedWidth(420);
    right->setFixedWidth(420);
    return new VantrelBackground(
        scrolling(column(16, {header(view), divider(), row(20, {left, right}, Alignment::leading)})
                      ->padded(20)));
}

QPalette darkPalette() {
    const QColor window(0x2A, 0x2A, 0x2D);
    QPalette palette(QColor(0x3A, 0x3A, 0x3E), window);
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x20));
    palette.setColor(QPalette::Text, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::ButtonText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x0A, 0x84, 0xFF));
    return palette;
}

AppDesktop appDesktop(headless::Desktop& desktop) {
    return {.overlay = {desktop.clock, desktop.pointer, desktop.screens, desktop.displayLinks,
                        desktop.overlayWindows, desktop.transaction, desktop.eventMonitors},
            .hotKeys = desktop.hotKeys,
            .mainQueue = desktop.mainQueue,
            .loginItem = desktop.loginItem,
            .workspace = desktop.workspace,
            .bundle = desktop.bundle,
            .locale = desktop.locale};
}

int run(const QApplication& application) {
    QCommandLineParser options;
    options.addOptions({{QStringLiteral("language"), QStringLiteral("english or chinese"),
                         QStringLiteral("name"), QStringLiteral("english")},
                        {QStringLiteral("mode"), QStringLiteral("off, highlight or laser"),
                         QStringLiteral("name"), QStringLiteral("highlight")},
                        {QStringLiteral("dark"), QStringLiteral("dark instead of light")},
                        {QStringLiteral("custom"), QStringLiteral("colours of no palette")},
                        {QStringLiteral("tabs"), QStringLiteral("press Tab so often"),
                         QStringLiteral("count"), QStringLiteral("0")},
                        {QStringLiteral("png"), QStringLiteral("write a picture and exit"),
                         QStringLiteral("file")}});
    options.addHelpOption();
    options.process(application);
    const auto language =
        caseNamed<AppLanguage>(options.value(QStringLiteral("language")).toStdString());
    const auto mode = caseNamed<CursorMode>(options.value(QStringLiteral("mode")).toStdString());
    if (!language || !mode) {
        std::fputs("vantrel-gallery: no such language or mode\n", stderr);
        return 2;
    }
    if (options.isSet(QStringLiteral("dark"))) {
        QApplication::setPalette(darkPalette());
    }

    headless::Desktop desktop;
    SettingsStore store(desktop.userDefaults, "gallery");
    AppState state(store, appDesktop(desktop));
    state.setMode(*mode);
    state.changePreferences([&](AppPreferences& preferences) {
        preferences.language = *language;
        if (options.isSet(QStringLiteral("custom"))) {
            preferences.highlight.color = preferences.laser.color = EffectColor::fromRgb(0x22AACC);
        }
    });
    const SystemClock clock;
    const DrawnCursor cursor;
    ViewContext view(state, {.clock = clock,
                             .cursors = cursor,
                             .screens = desktop.screens,
                             .bundle = desktop.bundle,
                             .userDefaults = desktop.userDefaults,
                             .keyboard = desktop.keyboard,
                             .alertSound = desktop.alertSound,
                             .terminate = [] { QApplication::quit(); }});
    const std::unique_ptr<QWidget> window(gallery(view));
    window->resize(920, 1010);
    window->setWindowTitle(QStringLiteral("Vantrel gallery"));
    window->show();
    if (!options.isSet(QStringLiteral("png"))) {
        return QApplication::exec();
    }
    QApplication::processEvents();
    for (int i = options.value(QStringLiteral("tabs")).toInt(); i > 0; --i) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QApplication::sendEvent(QApplication::focusWidget(), &press);
    }
    return window->grab().save(options.value(QStringLiteral("png"))) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    return vantrel::run(application);
}
