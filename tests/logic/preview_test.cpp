#include "overlay/drawn_cursor.h"
#include "overlay/preview_canvas.h"
#include "support/event_loop.h"
#include "support/headless_fixture.h"
#include "support/offscreen_application.h"

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

    PreviewTest() { canvas.resize(side, side); }

    AppPreferences preferences;
    PlainCursor cursor;
    PreviewCanvas canvas{desktop.clock, cursor};
};

TEST_F(PreviewTest, ThePointerHasItsTipInTheMiddleWhateverItsSize) {
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
        EXPECT_LT(image.pixelColor((QPointF(4, 8) * scale).toPoint()).lightness(), 60);
        EXPECT_EQ(image.pixelColor(0, image.height() - 1).alpha(), 0);
    }
}

TEST_F(PreviewTest, ClicksPlayWhereTheSettingsWantThemAndTheSpaceBarPlaysOne) {
    preferences.click = {.style = ClickStyle::pulse, .left = false, .right = true};
    canvas.setPreferences(preferences);
    QTest::mouseClick(&canvas, Qt::LeftButton, {}, {30, 50});
    EXPECT_FALSE(canvas.click());
    EXPECT_FALSE(canvas.isTicking());
    QTest::keyClick(&canvas, Qt::Key_Space);
    ASSERT_TRUE(canvas.click());
    EXPECT_EQ(canvas.click()->point, (GlobalPoint{side / 2.0, side / 2.0}));
    const auto first = canvas.click()->id;
    desktop.clock.advance(0.1);
    QTest::mouseClick(&canvas, Qt::RightButton, {}, {30, 50});
    EXPECT_TRUE(canvas.isTicking());
    EXPECT_NE(canvas.click()->id, first);
    EXPECT_EQ(canvas.click()->started, desktop.clock.uptime());
    EXPECT_EQ(canvas.click()->point, (GlobalPoint{30, side - 50}));
    EXPECT_EQ(canvas.click()->style, ClickStyle::pulse);
    PreviewCanvas laser(desktop.clock, cursor);
    laser.setLaser(true);
    QTest::mouseClick(&laser, Qt::LeftButton, {}, {30, 50});
    EXPECT_FALSE(laser.click());
    EXPECT_EQ(laser.focusPolicy(), Qt::NoFocus);
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
    EXPECT_TRUE(runUntil([&] { return paints.count >= 3; }));
    desktop.clock.advance(0.31);
    EXPECT_TRUE(runUntil([&] { return !canvas.isTicking(); }));
    EXPECT_FALSE(canvas.click());
    QCoreApplication::processEvents();
    const int last = paints.count;
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(paints.count, last);
}

TEST_F(PreviewTest, ALineShowsThatTheKeyboardIsAtIt) {
    canvas.show();
    canvas.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&canvas));
    const auto top = [this] { return canvas.grab().toImage().pixelColor(side / 2, 1); };
    const auto line = canvas.palette().color(QPalette::Highlight);
    EXPECT_NE(top(), line);
    canvas.setAttribute(Qt::WA_KeyboardFocusChange);
    EXPECT_EQ(top(), line);
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

} // namespace
} // namespace vantrel
