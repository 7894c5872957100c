// Shows one of the program's windows, or all parts of the interface in one window, on a desktop in
// memory: nothing that is chosen here reaches the screen or the disk. QT_SCALE_FACTOR sets the
// scale.

#include "testdesk/headless/desktop.h"
#include "ui/components/action_row.h"
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
#include "ui/components/plain_style.h"
#include "ui/components/scroll_view.h"
#include "ui/components/section_card.h"
#include "ui/components/stack.h"
#include "ui/components/status_badge.h"
#include "ui/components/switch_toggle.h"
#include "ui/components/value_slider.h"
#include "ui/help_view.h"
#include "ui/menu_panel.h"
#include "ui/settings_view.h"
#include "ui/welcome_view.h"
#include "ui/window_size.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QKeyEvent>
#include <QMessageBox>
#include <QScrollBar>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

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
        {new HighlightChoices(view, Density::regular),
         new EffectPreview(view, Text{"Local highlight preview", "高亮局部预览"}, {.height = 104}),
         row(8, {label(view, Text{"Color", "颜色"}, calloutText), spacer(),
                 new ColorChoices(view, color, Palette::highlight)}),
         new ValueSlider(view, Text{"Diameter", "直径"},
                         view.binding(&AppPreferences::highlight, &HighlightSettings::diameter),
                         {.range = highlightDiameterRange, .suffix = "pt"}),
         new ValueSlider(view, Text{"Opacity", "不透明度"},
                         view.binding(&AppPreferences::highlight, &HighlightSettings::opacity),
                         {.range = highlightOpacityRange, .suffix = "%", .percent = true}),
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
        {new EffectPreview(view, Text{"Local laser preview", "激光局部预览"},
                           {.laser = true, .height = 100}),
         row(8, {label(view, Text{"Color", "颜色"}, calloutText), spacer(),
                 new ColorChoices(view, view.binding(&AppPreferences::laser, &LaserSettings::color),
                                  Palette::laser)}),
         new ValueSlider(view, Text{"Dot diameter", "光点直径"},
                         view.binding(&AppPreferences::laser, &LaserSettings::diameter),
                         {.range = laserDiameterRange, .suffix = "pt"}),
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
        8, {new ActionRow(view, Text{"Privacy", "隐私说明"}, "hand.raised",
                          Text{"With a subtitle below", "下面的副标题"}, [] {}),
            divider(),
            new ActionRow(view, Text{"Terms of use", "使用条款"}, "doc.text", std::nullopt, [] {}),
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
    static const auto names = [] {
        std::vector<std::string> list;
        for (const QFileInfo& file : QDir(QStringLiteral(":/pictograms")).entryInfoList()) {
            list.push_back(file.completeBaseName().toStdString());
        }
        return list; // the parts keep references
    }();
    for (const auto& name : names) {
        if (count++ % 11 == 0) {
            rows->add(line = row(12, {}));
        }
        line->add(new Symbol(name, 20));
    }
    return new SectionCard(view, Text{"Pictograms", "图标"}, rows);
}

QWidget* gallery(ViewContext& view) {
    auto* left =
        column(16, {new ModeChoices(view, Density::compact),
                    new HighlightChoices(view, Density::compact), highlightCard(view), spacer()});
    auto* right = column(16, {new ModeChoices(view, Density::regular), laserCard(view),
                              rowsCard(view), pictogramsCard(view), spacer()});
    left->setFixedWidth(420);
    right->setFixedWidth(420);
    return new VantrelBackground(new ScrollView(
        column(16, {header(view), divider(), row(20, {left, right}, Alignment::leading)})
            ->padded(20)));
}

QWidget* makeWindow(ViewContext& view, const QString& name) {
    const auto sized = [](QWidget* window, AppWindow as) {
        window->resize(contentSizeOf(as));
        return window;
    };
    if (name == QStringLiteral("components")) {
        auto* window = gallery(view);
        window->resize(920, 1010);
        return window;
    }
    if (name == QStringLiteral("panel")) {
        return new MenuPanel(view);
    }
    if (name == QStringLiteral("settings")) {
        return sized(new SettingsView(view), AppWindow::settings);
    }
    if (name == QStringLiteral("welcome")) {
        return sized(new WelcomeView(view, [] { QApplication::quit(); }), AppWindow::welcome);
    }
    if (name == QStringLiteral("help")) {
        return sized(new HelpView(view), AppWindow::help);
    }
    return nullptr;
}

QString text(const char* latin) {
    return QString::fromLatin1(latin);
}

void defineOptions(QCommandLineParser& options) {
    const auto valued = [&](const char* name, const char* description, const char* fallback) {
        options.addOption({text(name), text(description), text("value"), text(fallback)});
    };
    const auto flag = [&](const char* name, const char* description) {
        options.addOption({text(name), text(description)});
    };
    valued("view", "components, panel, settings, welcome or help", "components");
    valued("tab", "appearance, effects, controls, general or about", "appearance");
    valued("language", "english or chinese", "english");
    valued("mode", "off, highlight or laser", "highlight");
    valued("size", "of the window, such as 520x560", "");
    valued("screen", "free height of the screen", "1040");
    valued("tabs", "press Tab so often", "0");
    valued("scroll", "points to scroll down", "0");
    flag("dark", "dark instead of light");
    flag("custom", "colours of no palette");
    flag("idle", "hide when idle");
    flag("problems", "with everything failing that can fail");
    flag("wayland", "as in a Wayland session");
    flag("alert", "ask whether to reset the preferences");
    valued("png", "write a picture and exit", "");
    options.addHelpOption();
}

// Where nothing can be registered or seen.
void failEverything(headless::Desktop& desktop, AppState& state) {
    desktop.eventMonitors.refusesGlobal = true;
    desktop.loginItem.refuses = true;
    state.setLaunchAtLogin(true);
    state.changePreferences([](AppPreferences& preferences) {
        preferences.laserShortcut = preferences.highlightShortcut;
    });
}

bool prepare(const QCommandLineParser& options, headless::Desktop& desktop, AppState& state) {
    const auto value = [&](const char* name) { return options.value(text(name)).toStdString(); };
    const auto language = caseNamed<AppLanguage>(value("language"));
    const auto mode = caseNamed<CursorMode>(value("mode"));
    const auto tab = caseNamed<SettingsTab>(value("tab"));
    if (!language || !mode || !tab) {
        return false;
    }
    const GlobalRect frame{0, 0, 1920, options.value(text("screen")).toDouble()};
    desktop.screens.set({{.frame = frame, .visibleFrame = frame}});
    state.selectTab(*tab);
    state.changePreferences([&](AppPreferences& preferences) {
        preferences.language = *language;
        preferences.highlight.idleHide = options.isSet(text("idle"));
        if (options.isSet(text("custom"))) {
            preferences.highlight.color = preferences.laser.color = EffectColor::fromRgb(0x22AACC);
        }
    });
    if (options.isSet(text("problems"))) {
        failEverything(desktop, state);
    }
    state.setMode(*mode);
    return true;
}

int writePicture(QWidget& window, const QCommandLineParser& options) {
    QApplication::processEvents();
    for (int i = options.value(text("tabs")).toInt(); i > 0; --i) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QApplication::sendEvent(QApplication::focusWidget(), &press);
    }
    for (auto* area : window.findChildren<QScrollArea*>()) {
        if (const int down = options.value(text("scroll")).toInt(); down > 0) {
            area->verticalScrollBar()->setValue(down);
        }
    }
    QApplication::processEvents();
    auto* shown = &window;
    if (auto* settings = dynamic_cast<SettingsView*>(shown);
        settings != nullptr && options.isSet(text("alert"))) {
        settings->confirmReset();
        QApplication::processEvents();
        shown = settings->resetAlert();
    }
    return shown->grab().save(options.value(text("png"))) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int run(const QApplication& application) {
    QCommandLineParser options;
    defineOptions(options);
    options.process(application);
    if (options.isSet(text("dark"))) {
        QApplication::setPalette(darkPalette());
    }
    headless::Desktop desktop;
    const bool inWaylandSession = options.isSet(text("wayland"));
    desktop.application.session = {.wayland = inWaylandSession, .xwayland = inWaylandSession};
    SettingsStore store(desktop.userDefaults, "gallery");
    AppState state(store, desktop);
    ViewContext view(state, desktop);
    if (!prepare(options, desktop, state)) {
        std::fputs("vantrel-gallery: no such language, mode or tab\n", stderr);
        return 2;
    }
    const std::unique_ptr<QWidget> window(makeWindow(view, options.value(text("view"))));
    if (window == nullptr) {
        std::fputs("vantrel-gallery: no such view\n", stderr);
        return 2;
    }
    if (const auto size = options.value(text("size")).split(QLatin1Char('x')); size.size() == 2) {
        window->resize(size[0].toInt(), size[1].toInt());
    }
    window->setWindowTitle(text("Vantrel gallery"));
    window->show();
    QTimer frames;
    QObject::connect(&frames, &QTimer::timeout, [&desktop] { desktop.frame(); });
    frames.start(std::chrono::milliseconds(16));
    return options.isSet(text("png")) ? writePicture(*window, options) : QApplication::exec();
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QApplication::setStyle(new vantrel::PlainStyle);
    return vantrel::run(application);
}
