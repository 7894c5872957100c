#include "overlay/effect.h"
#include "overlay/effect_drawing.h"
#include "platform/kwin/kwin_script.h"
#include "support/kwin_fixture.h"
#include "testdesk/client_window.h"
#include "testdesk/core_application.h"
#include "testdesk/wait.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// What the program does there.
struct Script {
    explicit Script(const KWinSession& session)
        : marks(session.bus(), VANTREL_DATA, EffectDrawing::picture) {
        EXPECT_TRUE(runUntil([&] { return marks.state() == MarksState::available; }));
    }

    KWinScript marks;
};

class KWinLookTest : public testing::TestWithParam<double> {};

TEST_P(KWinLookTest, ShowsEachEffectAsItIsPaintedElsewhere) {
    const CoreApplication application;
    const double scale = GetParam();
    MarkedKWin session({.scale = scale});
    Script script(session);
    for (const auto& look : everyLook()) {
        script.marks.show(look.effect());
        session.expectMark(look.effect(), scale, look.name);
    }

    // Off and on again, while the pointer rests.
    const auto last = everyLook().back();
    script.marks.clear();
    session.expectMark({}, scale, "nothing");
    script.marks.show(last.effect());
    session.expectMark(last.effect(), scale, "again");

    // A ring is the fainter the larger it has become.
    script.marks.show({.left = slowRing});
    session.expectMark({}, scale, "nothing");
    EXPECT_TRUE(runUntil([&] { return session.hearsPresses(); }));
    session.click(BTN_LEFT);
    EXPECT_TRUE(runUntil(
        [&] { return showsPartOf(slowRing, session.picture(), session.center(scale), scale); }));
}

INSTANTIATE_TEST_SUITE_P(Scales, KWinLookTest, testing::Values(1, 1.25, 1.5, 2));

TEST(KWinTest, IsAboveEverythingAndLetsPressesThrough) {
    const CoreApplication application;
    MarkedKWin session({.xwayland = true});
    const auto window = session.startFullScreenWindow();
    Script script(session);
    Effect effect = effectOf(CursorMode::highlight, strongly());
    effect.left->duration = 60; // hardly faded by the time that it is looked at
    effect.left->endDiameter = effect.left->startDiameter;
    script.marks.show(effect);
    EXPECT_TRUE(runUntil([&] { return session.isMarked() && session.hearsPresses(); }));
    session.moveTo(301, 300);
    ASSERT_TRUE(waitFor([&] { return window.count("enter") > 0; }));
    const auto placeOf = [](int press) {
        return QPoint(100 + press % 10 * 100, 500 + press / 10 % 2 * 100);
    };
    const auto isRinged = [&](int press) {
        const auto pixel = session.pixel(placeOf(press) + QPoint(8, 0));
        return qRed(pixel) > qBlue(pixel) + 40;
    };
    constexpr int presses = 100;
    for (int press = 0; press < presses; ++press) {
        session.moveTo(placeOf(press).x(), placeOf(press).y());
        session.click(BTN_LEFT);
        session.moveTo(301, 300);
        EXPECT_TRUE(runUntil([&] { return isRinged(press); })) << press;
    }
    // At most eight are shown, the latest ones.
    EXPECT_TRUE(isRinged(presses - 8) && !isRinged(presses - 9));
    EXPECT_TRUE(waitFor([&] { return window.count("press") == presses; }));
    // No script of Plasma 5 sees them at all.
    EXPECT_EQ(
        session.evaluate(
            "(workspace.windowList ? workspace.windowList() : workspace.clientList())"
            ".filter(window => /^vantrel/.test(window.caption))"
            ".every(window => window.skipTaskbar && window.skipPager && window.skipSwitcher)"),
        true);
    // A menu of an X program.
    const auto environment = session.environment();
    setenv("XAUTHORITY", environment.at("XAUTHORITY").c_str(), 1);
    const ClientWindow menu(environment.at("DISPLAY"),
                            {.area = {700, 300, 200, 200}, .color = 0xFF0000FF});
    session.moveTo(800, 400);
    EXPECT_TRUE(runUntil(
        [&] { return qBlue(session.picture().pixel(710, 310)) > 200 && session.isMarked(); }));
}

TEST(KWinTest, HidesAtRestAndCrossesDisplays) {
    const CoreApplication application;
    MarkedKWin session({.outputs = 2});
    std::optional<Script> script(session);
    Effect effect = effectOf(CursorMode::highlight, strongly());
    script->marks.show(effect);
    session.moveTo(1270, 300);
    session.expectMark(effect, 1, "border");
    for (int round = 0; round < 100; ++round) {
        session.client().enableOutput(1, false);
        session.moveTo(300, 300);
        EXPECT_TRUE(runUntil([&] { return session.isMarked(); })) << round;
        session.client().enableOutput(1, true);
        session.moveTo(1500, 300);
        EXPECT_TRUE(runUntil([&] { return session.isMarked(); })) << round;
    }
    session.moveTo(1000, 300);
    session.moveTo(1270, 300);
    session.expectMark(effect, 1, "border again");
    // Plasma 5 numbers them.
    const std::string second = "(workspace.desktops[1] || 2)";
    EXPECT_EQ(session.evaluate("(workspace.createDesktop(1, ''), workspace.currentDesktop = " +
                               second + ") === workspace.currentDesktop"),
              true);
    session.moveTo(700, 300);
    session.expectMark(effect, 1, "another desktop");
    effect.hideAfter = 0.3;
    script->marks.show(effect);
    EXPECT_TRUE(runUntil([&] { return !session.isMarked() && session.hearsPresses(); }));
    session.click(BTN_LEFT);
    EXPECT_TRUE(runUntil([&] { return session.isMarked(); }));
    EXPECT_TRUE(runUntil([&] { return !session.isMarked(); }));
    session.moveTo(1000, 300);
    EXPECT_TRUE(runUntil([&] { return session.isMarked(); }));

    // Sharp on displays of different scales.
    effect.hideAfter.reset();
    session.client().scaleOutput(1, 1.5);
    script.reset(); // a window of Plasma 5 keeps the scale that it was made with
    script.emplace(session);
    script->marks.show(effect);
    for (const int output : {0, 1}) {
        const double scale = output == 0 ? 1 : 1.5;
        session.moveTo(1280 * output + 200, 100);
        EXPECT_TRUE(runUntil([&] {
            return differences(session.displayPicture(output),
                               QPointF(200 * scale, 100 * scale).toPoint(), effect, scale)
                .areSlight();
        })) << output;
    }
}

TEST(KWinTest, HidesWhileTheScreenIsLocked) {
    const CoreApplication application;
    MarkedKWin session({.locks = true});
    Script script(session);
    const auto effect = effectOf(CursorMode::highlight, strongly());
    script.marks.show(effect);
    session.expectMark(effect, 1, "at first");
    session.lock();
    const auto isMarked = [&] {
        return differences(session.picture(), session.center(), effect, 1).areSlight();
    };
    EXPECT_TRUE(runUntil([&] { return !isMarked(); }));
    session.moveTo(310, 300);
    EXPECT_FALSE(isMarked());
    session.unlock();
    session.expectMark(effect, 1, "unlocked");
}

TEST(KWinTest, IsNoWindowOfAnOverview) {
    const CoreApplication application;
    MarkedKWin session;
    // One that shows what is there, and says that it is a scene of its own.
    const auto effects = std::filesystem::path("kwin/effects");
    const auto folder = std::filesystem::path(session.environment().at("XDG_DATA_HOME")) / effects;
    std::filesystem::create_directories(folder);
    std::filesystem::copy(VANTREL_DATA / effects / "vantrel-presses", folder / "overview-of-test",
                          std::filesystem::copy_options::recursive);
    std::ofstream(folder / "overview-of-test/metadata.json")
        << R"({"KPackageStructure": "KWin/Effect", "KPlugin": {"Id": "overview-of-test"},
               "X-Plasma-API": "javascript", "X-Plasma-MainScript": "code/main.js"})";
    std::ofstream(folder / "overview-of-test/contents/code/main.js")
        << "animate({window: effects.activeWindow, duration: 60000, animations: "
           "[{type: Effect.Opacity, from: 1, to: 1, fullScreen: true}]});";
    session.restart();
    session.moveTo(300, 300);
    const auto window = session.startFullScreenWindow();
    Script script(session);
    script.marks.show(effectOf(CursorMode::highlight, strongly()));
    // On a white window.
    const auto isMarked = [&] { return qBlue(session.pixel(session.center())) < 100; };
    EXPECT_TRUE(runUntil([&] { return isMarked() && session.hearsPresses(); }));
    for (const bool isOpen : {true, false}) {
        session.call(QStringLiteral("org.kde.KWin"), QStringLiteral("/Effects"),
                     "org.kde.kwin.Effects", isOpen ? "loadEffect" : "unloadEffect",
                     {QStringLiteral("overview-of-test")});
        EXPECT_TRUE(runUntil([&] { return isMarked() != isOpen; })) << isOpen;
    }
}

TEST(KWinTest, IsAtThePointerInEveryFrame) {
    const CoreApplication application;
    MarkedKWin session;
    if (session.version() > 5) {
        GTEST_SKIP() << "shown on an X server, Plasma 6 does not show its pointer";
    }
    Script script(session);
    const auto effect = effectOf(CursorMode::highlight, strongly());
    script.marks.show(effect);
    session.expectMark(effect, 1, "at rest");
    const auto distance = [&] {
        const auto picture = session.picture(true);
        int mark = 0;
        int pointer = 0;
        while (mark < picture.width() && qRed(picture.pixel(mark, 300)) < 100) {
            ++mark;
        }
        while (pointer < picture.width() && qBlue(picture.pixel(pointer, 306)) < 200) {
            ++pointer;
        }
        return pointer - mark;
    };
    const int wanted = distance();
    std::atomic<bool> ends = false;
    std::thread motion([&] {
        for (int step = 0; !ends; ++step) {
            session.client().sendTo(300 + std::abs(step % 1200 - 600), 300);
            std::this_thread::sleep_for(200us);
        }
    });
    for (int frame = 0; frame < 30; ++frame) {
        EXPECT_EQ(distance(), wanted);
    }
    ends = true;
    motion.join();
}

TEST(KWinTest, ShowsNothingThatIsOutOfBounds) {
    const CoreApplication application;
    MarkedKWin session;
    Script script(session);
    const auto good = effectOf(CursorMode::highlight, strongly());
    script.marks.show(good);
    session.expectMark(good, 1, "good");
    const std::vector<std::pair<const char*, void (*)(Effect&)>> faults{
        {"size", [](Effect& effect) { effect.discs.front().diameter = 4100; }},
        {"rest", [](Effect& effect) { effect.hideAfter = 1e9; }},
        {"duration", [](Effect& effect) { effect.left->duration = 100; }},
        {"opacity", [](Effect& effect) { effect.left->startOpacity = 2; }},
        {"width", [](Effect& effect) { effect.right->lineWidth = std::nan(""); }},
    };
    for (const auto& [name, spoil] : faults) {
        Effect bad = good;
        spoil(bad);
        script.marks.show(bad);
        session.expectComplaint(name);
    }
    session.expectMark(good, 1, "what was there before");
}

TEST(KWinTest, ServesOneProgramAtATimeInEachKWin) {
    const CoreApplication application;
    MarkedKWin session;
    const auto effect = effectOf(CursorMode::highlight, strongly());
    // Somebody's script has the number that KWin gives next.
    const auto tell = [&](const char* method, const QVariantList& arguments) {
        session.call(QStringLiteral("org.kde.KWin"), QStringLiteral("/Scripting"),
                     "org.kde.kwin.Scripting", method, arguments);
    };
    for (const auto& name : {QStringLiteral("one"), QStringLiteral("two")}) {
        const auto script = session.folder() / (name.toStdString() + ".js");
        std::ofstream(script).close();
        tell("loadScript", {QString::fromStdString(script), name});
    }
    tell("unloadScript", {QStringLiteral("one")});
    std::optional<Script> first(session);
    first->marks.show(effect);
    EXPECT_TRUE(runUntil([&] { return session.isMarked(); }));
    const auto bus = QDBusConnection::connectToBus(
        QString::fromStdString(session.environment().at("DBUS_SESSION_BUS_ADDRESS")),
        QString::fromStdString(session.folder()));
    KWinScript second(bus, VANTREL_DATA, EffectDrawing::picture);
    EXPECT_TRUE(runUntil([&] { return second.state() == MarksState::busy; }));
    first.reset();
    EXPECT_TRUE(runUntil([&] { return second.state() == MarksState::available; }));
    EXPECT_TRUE(runUntil([&] { return !session.isMarked(); }));
    second.show(effect);
    EXPECT_TRUE(runUntil([&] { return session.isMarked(); }));
    session.restart();
    session.moveTo(300, 300);
    EXPECT_TRUE(runUntil([&] { return session.isMarked() && session.hearsPresses(); }));
    session.stopBus();
    EXPECT_TRUE(runUntil([&] { return second.state() == MarksState::none; }));
}

TEST(KWinTest, SaysThatItDoesNotHearOfPresses) {
    const CoreApplication application;
    MarkedKWin session({.dataFolder = "/nowhere"});
    const auto folder = session.folder() / "elsewhere";
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    Script script(session);
    EXPECT_TRUE(runUntil([&] { return !script.marks.seesPresses(); }));
    EXPECT_EQ(script.marks.state(), MarksState::available);
    EXPECT_TRUE(
        std::filesystem::exists(folder / "kwin/effects/vantrel-presses/contents/code/main.js"));
}

} // namespace
} // namespace vantrel::desktop
