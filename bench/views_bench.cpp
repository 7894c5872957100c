// What the windows cost, beside opening the settings: a switch of the tab, and a switch of the
// language while all of them are open.

#include "testdesk/headless/desktop.h"
#include "ui/help_view.h"
#include "ui/menu_panel.h"
#include "ui/settings_view.h"
#include "ui/welcome_view.h"
#include "ui/window_size.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <memory>
#include <vector>

namespace vantrel {
namespace {

struct Stage {
    Stage() {
        desktop.screens.set({{.id = 1,
                              .frame = {0, 0, 1920, 1080},
                              .visibleFrame = {0, 0, 1920, 1080},
                              .maximumFramesPerSecond = 60}});
        state.setMode(CursorMode::highlight);
    }

    static void show(QWidget& window, QSize size) {
        window.resize(size);
        window.show();
        settle();
    }
    // Until everything is painted.
    static void settle() {
        QApplication::processEvents();
        QApplication::processEvents();
    }
    void setLanguage(AppLanguage language) {
        state.changePreferences(
            [language](AppPreferences& preferences) { preferences.language = language; });
    }

    headless::Desktop desktop;
    SettingsStore store{desktop.userDefaults, "key"};
    AppState state{store, desktop};
    ViewContext view{state, desktop};
};

constexpr QSize settingsSize = contentSizeOf(AppWindow::settings);

void buildTheSettings(benchmark::State& state) {
    Stage stage;
    for ([[maybe_unused]] auto _ : state) {
        SettingsView settings(stage.view);
        Stage::show(settings, settingsSize);
    }
}
BENCHMARK(buildTheSettings)->Unit(benchmark::kMillisecond);

void openTheSettingsAgain(benchmark::State& state) {
    Stage stage;
    SettingsView settings(stage.view);
    Stage::show(settings, settingsSize);
    for ([[maybe_unused]] auto _ : state) {
        settings.hide();
        Stage::settle();
        Stage::show(settings, settingsSize);
    }
}
BENCHMARK(openTheSettingsAgain)->Unit(benchmark::kMillisecond);

void switchTheTab(benchmark::State& state) {
    Stage stage;
    SettingsView settings(stage.view);
    Stage::show(settings, settingsSize);
    constexpr auto tabs = allCases<SettingsTab>();
    unsigned tab = 0;
    for ([[maybe_unused]] auto _ : state) {
        stage.state.selectTab(tabs[++tab % tabs.size()]);
        Stage::settle();
    }
}
BENCHMARK(switchTheTab)->Unit(benchmark::kMillisecond);

void switchTheLanguageOfAllWindows(benchmark::State& state) {
    Stage stage;
    SettingsView settings(stage.view);
    WelcomeView welcome(stage.view, [] {});
    HelpView help(stage.view);
    MenuPanel panel(stage.view);
    Stage::show(settings, settingsSize);
    Stage::show(welcome, contentSizeOf(AppWindow::welcome));
    Stage::show(help, contentSizeOf(AppWindow::help));
    Stage::show(panel, {340, 540});
    bool english = true;
    for ([[maybe_unused]] auto _ : state) {
        english = !english;
        stage.setLanguage(english ? AppLanguage::english : AppLanguage::chinese);
        Stage::settle();
    }
}
BENCHMARK(switchTheLanguageOfAllWindows)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
