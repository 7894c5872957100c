// What the overlay costs before anything of it reaches a display server. Each line also tells how
// often memory was taken for one round.

#include "overlay/overlay_window_manager.h"
#include "testdesk/allocations.h"
#include "testdesk/headless/desktop.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace vantrel {
namespace {

struct Stage {
    explicit Stage(CursorMode mode = CursorMode::highlight, int screens = 1, double scale = 1) {
        std::vector<Screen> list;
        for (int i = 0; i < screens; ++i) {
            const GlobalRect frame{1920.0 * i, 0, 1920, 1080};
            list.push_back({static_cast<std::uint32_t>(i), frame, frame, scale, 60});
        }
        desktop.screens.set(list);
        desktop.pointer.place = {400, 300};
        desktop.transaction.watchesLayers = false;
        manager.emplace(desktop);
        manager->apply(mode, preferences);
    }

    headless::Desktop desktop;
    AppPreferences preferences;
    std::optional<OverlayWindowManager> manager;
};

void measure(benchmark::State& state, auto round) {
    const auto before = desktop::allocations();
    for ([[maybe_unused]] auto _ : state) {
        round();
    }
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(desktop::allocations() - before), benchmark::Counter::kAvgIterations);
}

void tickWithNothingChanged(benchmark::State& state) {
    Stage stage;
    measure(state, [&] { stage.manager->tick(); });
}
BENCHMARK(tickWithNothingChanged);

void tickWithThePointerMoved(benchmark::State& state) {
    Stage stage(CursorMode::highlight, static_cast<int>(state.range(0)));
    measure(state, [&] {
        auto& place = stage.desktop.pointer.place;
        place.x = place.x < 1000 ? place.x + 1 : 100;
        stage.manager->tick();
    });
}
BENCHMARK(tickWithThePointerMoved)->Arg(1)->Arg(3);

void configureHighlight(benchmark::State& state) {
    Stage stage(CursorMode::highlight, 1, 2);
    stage.preferences.highlight.style = static_cast<HighlightStyle>(state.range(0));
    state.SetLabel(std::string(nameOf(stage.preferences.highlight.style)));
    measure(state, [&] {
        auto& diameter = stage.preferences.highlight.diameter;
        diameter = diameter < 120 ? diameter + 1 : 24;
        stage.manager->apply(CursorMode::highlight, stage.preferences);
    });
}
BENCHMARK(configureHighlight)->DenseRange(0, 2);

void configureLaser(benchmark::State& state) {
    Stage stage(CursorMode::laser, 1, 2);
    stage.preferences.laser.glow = static_cast<GlowStrength>(state.range(0));
    state.SetLabel(std::string(nameOf(stage.preferences.laser.glow)));
    measure(state, [&] {
        auto& diameter = stage.preferences.laser.diameter;
        diameter = diameter < 24 ? diameter + 1 : 6;
        stage.manager->apply(CursorMode::laser, stage.preferences);
    });
}
BENCHMARK(configureLaser)->DenseRange(0, 2);

// One frame with eight rings, each on two of three displays.
void eightClicksOnThreeDisplays(benchmark::State& state) {
    Stage stage(CursorMode::highlight, 3);
    const auto click = [&] {
        for (int i = 0; i < 8; ++i) {
            stage.manager->addClick({1920.0 * (1 + i % 2), 100.0 + 100 * i}, MouseButton::left);
        }
    };
    double age = 1;
    measure(state, [&] {
        if (age > 0.28) {
            state.PauseTiming();
            click();
            age = 0;
            state.ResumeTiming();
        }
        age += 1.0 / 120;
        stage.desktop.clock.advance(1.0 / 120);
        stage.manager->tick();
    });
}
BENCHMARK(eightClicksOnThreeDisplays);

} // namespace
} // namespace vantrel

BENCHMARK_MAIN();
