#include "overlay/drawn_cursor.h"
#include "overlay/overlay_window_manager.h"
#include "overlay/preview_canvas.h"
#include "support/headless_fixture.h"
#include "support/offscreen_application.h"
#include "support/picture_difference.h"

#include <QDeadlineTimer>
#include <QtTest/QTest>

namespace vantrel {
namespace {

// A pointer of one colour, so that it is found again.
class PlainCursor final : public CursorImages {
public:
    [[nodiscard]] CursorImage arrow(double /*scale*/) const override { return picture; }

    CursorImage picture;
};

class PreviewTest : public HeadlessTest {
protected:
    static constexpr int side = 200;

    PreviewTest() {
        canvas.resize(side, side);
        QPalette clear;
        clear.setColor(QPalette::Base, Qt::transparent);
        canvas.setPalette(clear);
    }
    void show() {
        canvas.setPreferences(preferences);
        canvas.setLaser(mode == CursorMode::laser);
    }
    QImage drawn(double scale) {
        QImage picture(QSize(side, side) * scale, QImage::Format_ARGB32_Premultiplied);
        picture.setDevicePixelRatio(scale);
        picture.fill(Qt::transparent);
        canvas.render(&picture, {}, {}, {});
        return picture;
    }
    // What the overlay shows with the pointer in its middle and a click, if there is one, at an age
    // and in points from the bottom-left.
    QImage overlay(double scale, std::optional<GlobalPoint> click = {}, double age = 0) {
        desktop.screens.set({screen(1, {0, 0, side, side}, 60, scale)});
        desktop.pointer.place = {side / 2.0, side / 2.0};
        OverlayWindowManager manager(desktop);
        manager.apply(mode, preferences);
        if (click) {
            manager.addClick(*click, MouseButton::left);
            manager.tick();
            desktop.clock.advance(age);
        }
        return desktop.overlayWindows.windows()[0]->picture(desktop.clock.mediaTime());
    }
    // Until it holds, or for too long.
    static bool waitUntil(const std::function<bool()>& condition) {
        QDeadlineTimer deadline(5000);
        while (!condition() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        }
        return condition();
    }

    CursorMode mode = CursorMode::highlight;
    AppPreferences preferences;
    PlainCursor cursor;
    PreviewCanvas canvas{desktop.clock, cursor};
};

TEST_F(PreviewTest, ShowsTheHighlightAsTheOverlayDoes) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        for (const auto style : allCases<HighlightStyle>()) {
            for (const double diameter : {24.0, 47.3, 120.0}) {
                preferences.highlight.style = style;
                preferences.highlight.diameter = diameter;
                show();
                EXPECT_LE(difference(drawn(scale), overlay(scale)), 2)
                    << nameOf(style) << " " << diameter << " at " << scale;
            }
        }
    }
}

TEST_F(PreviewTest, ShowsTheLaserAsTheOverlayDoes) {
    mode = CursorMode::laser;
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        for (const auto glow : allCases<GlowStrength>()) {
            for (const double diameter : {7.0, 8.0, 12.0, 13.0, 24.0}) {
                preferences.laser.glow = glow;
                preferences.laser.diameter = diameter;
                show();
                EXPECT_LE(difference(drawn(scale), overlay(scale)), 2)
                    << nameOf(glow) << " " << diameter << " at " << scale;
            }
        }
    }
}

TEST_F(PreviewTest, PlaysAClickAsTheOverlayDoes) {
    for (const double scale : {1.0, 2.0}) {
        for (const auto style : {ClickStyle::ripple, ClickStyle::pulse}) {
            for (const double age : {0.0, 0.05, 0.2}) {
                preferences.click.style = style;
                show();
                canvas.playClick({60, 130}, MouseButton::left);
                const auto expected = overlay(scale, GlobalPoint{60, side - 130}, age);
                EXPECT_LE(difference(drawn(scale), expected), 2)
                    << nameOf(style) << " after " << age << " at " << scale;
            }
        }
    }
}

TEST_F(PreviewTest, ThePointerHasItsTipInTheMiddleWhateverItsSize) {
    preferences.highlight.opacity = 0;
    show();
    for (const int size : {16, 31, 64}) {
        cursor.picture = {QImage(size, size, QImage::Format_ARGB32_Premultiplied), {3, 5}};
        cursor.picture.image.fill(Qt::transparent);
        cursor.picture.image.setPixelColor(3, 5, Qt::red);
        PreviewCanvas fresh(desktop.clock, cursor);
        fresh.resize(side, side);
        EXPECT_EQ(fresh.grab().toImage().pixelColor(side / 2, side / 2), QColor(Qt::red));
    }
}

TEST_F(PreviewTest, OurOwnPointerIsSharpAtEveryScale) {
    for (const double scale : {1.0, 1.5, 3.0}) {
        const auto [image, tip] = DrawnCursor().arrow(scale);
        EXPECT_EQ(image.devicePixelRatio(), scale);
        const auto pixel = (tip * scale).toPoint();
        EXPECT_GT(image.pixelColor(pixel).alpha(), 200);
        EXPECT_EQ(image.pixelColor(0, image.height() - 1).alpha(), 0);
    }
}

TEST_F(PreviewTest, ClicksPlayOnlyWhereTheSettingsWantThem) {
    struct Case {
        bool laser, isRight, plays;
    };
    preferences.click = {.style = ClickStyle::pulse, .left = true, .right = false};
    for (const auto& [laser, isRight, plays] :
         {Case{false, false, true}, Case{false, true, false}, Case{true, false, false}}) {
        PreviewCanvas fresh(desktop.clock, cursor);
        fresh.resize(side, side);
        fresh.setPreferences(preferences);
        fresh.setLaser(laser);
        QTest::mouseClick(&fresh, isRight ? Qt::RightButton : Qt::LeftButton, {}, {30, 50});
        ASSERT_EQ(fresh.click().has_value(), plays);
        EXPECT_EQ(fresh.isTicking(), plays);
        if (plays) {
            EXPECT_EQ(fresh.click()->point, (GlobalPoint{30, side - 50}));
            EXPECT_EQ(fresh.click()->style, ClickStyle::pulse);
        }
    }
}

TEST_F(PreviewTest, ANewClickReplacesTheOneThatPlays) {
    canvas.playClick({10, 10}, MouseButton::left);
    const auto first = *canvas.click();
    desktop.clock.advance(0.1);
    canvas.playClick({20, 20}, MouseButton::left);
    EXPECT_NE(canvas.click()->id, first.id);
    EXPECT_EQ(canvas.click()->started, desktop.clock.uptime());
}

TEST_F(PreviewTest, ClicksGoThroughACanvasThatIsNotInteractive) {
    QWidget behind;
    behind.resize(side, side);
    auto* sample = new PreviewCanvas(desktop.clock, cursor, &behind);
    sample->resize(side, side);
    EXPECT_EQ(behind.childAt(20, 20), sample);
    sample->setInteractive(false);
    EXPECT_EQ(behind.childAt(20, 20), nullptr);
    EXPECT_EQ(sample->focusPolicy(), Qt::NoFocus);
}

TEST_F(PreviewTest, PaintsAnewOnlyWhileAClickPlays) {
    struct PaintCounter : QObject {
        bool eventFilter(QObject* /*object*/, QEvent* event) override {
            count += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int count = 0;
    } paints;
    canvas.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&canvas));
    QCoreApplication::processEvents();
    canvas.installEventFilter(&paints);
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(paints.count, 0);

    canvas.playClick({50, 50}, MouseButton::left);
    EXPECT_TRUE(waitUntil([&] { return paints.count >= 3; }));
    desktop.clock.advance(0.31);
    EXPECT_TRUE(waitUntil([&] { return !canvas.isTicking(); }));
    EXPECT_FALSE(canvas.click());
    QCoreApplication::processEvents();
    const int last = paints.count;
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(paints.count, last);
}

TEST_F(PreviewTest, LeavingTheWindowEndsAClick) {
    QWidget window;
    auto* sample = new PreviewCanvas(desktop.clock, cursor, &window);
    window.show();
    sample->playClick({5, 5}, MouseButton::left);
    ASSERT_TRUE(sample->isTicking());
    sample->setParent(nullptr);
    EXPECT_FALSE(sample->isTicking());
    EXPECT_FALSE(sample->click());
    delete sample;
}

TEST_F(PreviewTest, TheSpaceBarPlaysAClickAtThePointer) {
    preferences.click.left = false;
    show();
    QTest::keyClick(&canvas, Qt::Key_Space);
    ASSERT_TRUE(canvas.click());
    EXPECT_EQ(canvas.click()->point, (GlobalPoint{100, 100}));
}

} // namespace
} // namespace vantrel
