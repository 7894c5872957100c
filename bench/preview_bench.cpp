// What one repaint of a preview costs, beside a plain fill of the same canvas; and that a preview
// in which nothing plays is not repainted.

#include "overlay/drawn_cursor.h"
#include "overlay/preview_canvas.h"
#include "testdesk/headless/desktop.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEventLoop>
#include <QImage>
#include <QPainter>
#include <QTimer>

#include <array>
#include <string>

namespace vantrel {
namespace {

// As wide as the settings show it.
constexpr QSize canvasSize(480, 100);

struct Stage {
    Stage() {
        canvas.resize(canvasSize);
        canvas.setPreferences(preferences);
        image.fill(Qt::white);
    }

    void paint() { canvas.render(&image); }

    headless::Desktop desktop;
    AppPreferences preferences;
    DrawnCursor cursor;
    PreviewCanvas canvas{desktop.clock, cursor};
    QImage image{canvasSize, QImage::Format_ARGB32_Premultiplied};
};

// The same way to the pixels, with a widget of one colour.
void fillTheCanvas(benchmark::State& state) {
    QWidget plain;
    plain.resize(canvasSize);
    plain.setAutoFillBackground(true);
    QImage image(canvasSize, QImage::Format_ARGB32_Premultiplied);
    for ([[maybe_unused]] auto _ : state) {
        plain.render(&image);
    }
}
BENCHMARK(fillTheCanvas);

void repaintHighlight(benchmark::State& state) {
    Stage stage;
    stage.preferences.highlight.style = static_cast<HighlightStyle>(state.range(0));
    stage.canvas.setPreferences(stage.preferences);
    state.SetLabel(std::string(nameOf(stage.preferences.highlight.style)));
    for ([[maybe_unused]] auto _ : state) {
        stage.paint();
    }
}
BENCHMARK(repaintHighlight)->DenseRange(0, 2);

void repaintLaser(benchmark::State& state) {
    Stage stage;
    stage.preferences.laser.glow = static_cast<GlowStrength>(state.range(0));
    stage.canvas.setPreferences(stage.preferences);
    stage.canvas.setLaser(true);
    state.SetLabel(std::string(nameOf(stage.preferences.laser.glow)));
    for ([[maybe_unused]] auto _ : state) {
        stage.paint();
    }
}
BENCHMARK(repaintLaser)->DenseRange(0, 2);

void repaintWhileAClickPlays(benchmark::State& state) {
    Stage stage;
    stage.canvas.playClick({240, 50}, MouseButton::left);
    stage.desktop.clock.advance(0.1);
    for ([[maybe_unused]] auto _ : state) {
        stage.paint();
    }
}
BENCHMARK(repaintWhileAClickPlays);

class PaintCount : public QObject {
public:
    explicit PaintCount(QObject& watched) { watched.installEventFilter(this); }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count = 0;
};

void runEventsFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// Half a second on the screen.
void restOnTheScreen(benchmark::State& state) {
    Stage stage;
    stage.canvas.show();
    runEventsFor(100);
    for ([[maybe_unused]] auto _ : state) {
        const PaintCount paints(stage.canvas);
        runEventsFor(500);
        state.counters["repaints"] = paints.count;
        if (paints.count != 0) {
            state.SkipWithError("repainted while nothing plays");
            break;
        }
    }
}
BENCHMARK(restOnTheScreen)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
