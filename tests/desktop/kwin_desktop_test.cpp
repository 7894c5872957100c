#include "overlay/effect.h"
#include "overlay/effect_drawing.h"
#include "platform/kwin/kwin_script.h"
#include "support/mark_pixels.h"
#include "support/program_of.h"
#include "testdesk/client_window.h"
#include "testdesk/core_application.h"
#include "testdesk/kwin_session.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

bool comes(const std::function<bool()>& condition) {
    return waitFor([&] {
        QCoreApplication::processEvents();
        return condition();
    });
}

// A session that shows marks, and is left without a fault of theirs.
class Session : public KWinSession {
public:
    explicit Session(Options options = {}) : KWinSession(withData(options)) { moveTo(300, 300); }
    ~Session() { EXPECT_EQ(complaints(), expectedComplaints_); }

    // Another display is entered by the second motion only.
    void moveTo(double x, double y) {
        client().moveTo(x, y);
        client().moveTo(x, y);
        place_ = {x, y};
    }
    [[nodiscard]] bool hasScript() const {
        return isLoaded("/Scripting", "org.kde.kwin.Scripting", "isScriptLoaded", "vantrel");
    }
    [[nodiscard]] bool hearsPresses() const {
        return isLoaded("/Effects", "org.kde.kwin.Effects", "isEffectLoaded", "vantrel-presses");
    }
    [[nodiscard]] bool hasNothing() const { return !hasScript() && !hearsPresses(); }
    // Waits for one more.
    void expectComplaint(const std::string& why) {
        EXPECT_TRUE(comes([&] { return complaints().size() > expectedComplaints_.size(); })) << why;
        expectedComplaints_ = complaints();
    }
    // The pixel of the pointer.
    [[nodiscard]] QPoint center(double scale = 1) const { return (place_ * scale).toPoint(); }
    // By what covers all around the pointer.
    [[nodiscard]] bool isMarked() const { return qRed(pixel(center() + QPoint(5, 0))) > 100; }
    // Waits until the pointer is marked so.
    void expectMark(const Effect& effect, double scale, const std::string& where) const {
        Differences last;
        EXPECT_TRUE(comes([&] {
            last = differences(picture(), center(scale), effect, scale);
            return last.areSlight();
        })) << where
            << " " << last;
    }

private:
    bool isLoaded(const char* path, const char* interface, const char* method,
                  const char* name) const {
        return call(QStringLiteral("org.kde.KWin"), QString::fromLatin1(path), interface, method,
                    {QString::fromLatin1(name)})
            .arguments()
            .at(0)
            .toBool();
    }
    static Options withData(Options options) {
        if (options.dataFolder.empty()) {
            options.dataFolder = underTest("VANTREL_DATA", VANTREL_DATA);
        }
        return options;
    }

    QPointF place_;
    std::string expectedComplaints_;
};

// What the program does there.
struct Script {
    explicit Script(const KWinSession& session)
        : marks(session.bus(), VANTREL_DATA, EffectDrawing::picture) {
        EXPECT_TRUE(comes([&] { return marks.state() == MarksState::available; }));
    }

    KWinScript marks;
};

class KWinLookTest : public testing::TestWithParam<double> {};

TEST_P(KWinLookTest, ShowsEachEffectAsItIsPaintedElsewhere) {
    const CoreApplication application;
    const double scale = GetParam();
    Session session({.scale = scale});
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
    EXPECT_TRUE(comes([&] { return session.hearsPresses(); }));
    session.click(BTN_LEFT);
    EXPECT_TRUE(comes(
        [&] { return showsPartOf(slowRing, session.picture(), session.center(scale), scale); }));
}

INSTANTIATE_TEST_SUITE_P(Scales, KWinLookTest, testing::Values(1, 1.25, 1.5, 2));

TEST(KWinTest, IsAboveEverythingAndLetsPressesThrough) {
    const CoreApplication application;
    Session session({.xwayland = true});
    const auto window = session.startFullScreenWindow();
    Script script(session);
    Effect effect = effectOf(CursorMode::highlight, strongly());
    effect.left->duration = 60; // hardly faded by the time that it is looked at
    effect.left->endDiameter = effect.left->startDiameter;
    script.marks.show(effect);
    EXPECT_TRUE(comes([&] { return session.isMarked() && session.hearsPresses(); }));
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
        EXPECT_TRUE(comes([&] { return isRinged(press); })) << press;
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
    EXPECT_TRUE(comes(
        [&] { return qBlue(session.picture().pixel(710, 310)) > 200 && session.isMarked(); }));
}

TEST(KWinTest, HidesAtRestAndCrossesDisplays) {
    const CoreApplication application;
    Session session({.outputs = 2});
    std::optional<Script> script(session);
    Effect effect = effectOf(CursorMode::highlight, strongly());
    script->marks.show(effect);
    session.moveTo(1270, 300);
    session.expectMark(effect, 1, "border");
    for (int round = 0; round < 100; ++round) {
        session.client().enableOutput(1, false);
        session.moveTo(300, 300);
        EXPECT_TRUE(comes([&] { return session.isMarked(); })) << round;
        session.client().enableOutput(1, true);
        session.moveTo(1500, 300);
        EXPECT_TRUE(comes([&] { return session.isMarked(); })) << round;
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
    EXPECT_TRUE(comes([&] { return !session.isMarked() && session.hearsPresses(); }));
    session.click(BTN_LEFT);
    EXPECT_TRUE(comes([&] { return session.isMarked(); }));
    EXPECT_TRUE(comes([&] { return !session.isMarked(); }));
    session.moveTo(1000, 300);
    EXPECT_TRUE(comes([&] { return session.isMarked(); }));

    // Sharp on displays of different scales.
    effect.hideAfter.reset();
    session.client().scaleOutput(1, 1.5);
    script.reset(); // a window of Plasma 5 keeps the scale that it was made with
    script.emplace(session);
    script->marks.show(effect);
    for (const int output : {0, 1}) {
        const double scale = output == 0 ? 1 : 1.5;
        session.moveTo(1280 * output + 200, 100);
        EXPECT_TRUE(comes([&] {
            return differences(session.displayPicture(output),
                               QPointF(200 * scale, 100 * scale).toPoint(), effect, scale)
                .areSlight();
        })) << output;
    }
}

TEST(KWinTest, HidesWhileTheScreenIsLocked) {
    const CoreApplication application;
    Session session({.locks = true});
    Script script(session);
    const auto effect = effectOf(CursorMode::highlight, strongly());
    script.marks.show(effect);
    session.expectMark(effect, 1, "at first");
    session.lock();
    const auto isMarked = [&] {
        return differences(session.picture(), session.center(), effect, 1).areSlight();
    };
    EXPECT_TRUE(comes([&] { return !isMarked(); }));
    session.moveTo(310, 300);
    EXPECT_FALSE(isMarked());
    session.unlock();
    session.expectMark(effect, 1, "unlocked");
}

TEST(KWinTest, IsNoWindowOfAnOverview) {
    const CoreApplication application;
    Session session;
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
    EXPECT_TRUE(comes([&] { return isMarked() && session.hearsPresses(); }));
    for (const bool isOpen : {true, false}) {
        session.call(QStringLiteral("org.kde.KWin"), QStringLiteral("/Effects"),
                     "org.kde.kwin.Effects", isOpen ? "loadEffect" : "unloadEffect",
                     {QStringLiteral("overview-of-test")});
        EXPECT_TRUE(comes([&] { return isMarked() != isOpen; })) << isOpen;
    }
}

TEST(KWinTest, IsAtThePointerInEveryFrame) {
    const CoreApplication application;
    Session session;
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
    Session session;
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
    Session session;
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
    EXPECT_TRUE(comes([&] { return session.isMarked(); }));
    const auto bus = QDBusConnection::connectToBus(
        QString::fromStdString(session.environment().at("DBUS_SESSION_BUS_ADDRESS")),
        QString::fromStdString(session.folder()));
    KWinScript second(bus, VANTREL_DATA, EffectDrawing::picture);
    EXPECT_TRUE(comes([&] { return second.state() == MarksState::busy; }));
    first.reset();
    EXPECT_TRUE(comes([&] { return second.state() == MarksState::available; }));
    EXPECT_TRUE(comes([&] { return !session.isMarked(); }));
    second.show(effect);
    EXPECT_TRUE(comes([&] { return session.isMarked(); }));
    session.restart();
    session.moveTo(300, 300);
    EXPECT_TRUE(comes([&] { return session.isMarked() && session.hearsPresses(); }));
    session.stopBus();
    EXPECT_TRUE(comes([&] { return second.state() == MarksState::none; }));
}

TEST(KWinTest, SaysThatItDoesNotHearOfPresses) {
    const CoreApplication application;
    Session session({.dataFolder = "/nowhere"});
    const auto folder = session.folder() / "elsewhere";
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    Script script(session);
    EXPECT_TRUE(comes([&] { return !script.marks.seesPresses(); }));
    EXPECT_EQ(script.marks.state(), MarksState::available);
    EXPECT_TRUE(
        std::filesystem::exists(folder / "kwin/effects/vantrel-presses/contents/code/main.js"));
}

TEST(KWinTest, TheProgramHasItsMarksAndShortcutsFromKWin) {
    const CoreApplication application;
    Session session;
    auto stored = preferencesShowing("highlight");
    stored["highlight"]["opacity"] = 0.9;
    const ProgramOf vantrel(session);
    const auto tells = [&](const char* key, const auto& value) {
        return vantrel.tells(key, value);
    };
    auto first = stored;
    first["highlightShortcut"] = {{"keyCode", 18}, {"modifiers", 0x1200}, {"display", "⌃⇧1"}};
    writePreferences(session.folder() / "config", first);
    std::ofstream(session.folder() / "config/kxkbrc")
        << "[Layout]\nUse=true\n"
           "LayoutList=us,us,ru\nVariantList=,dvorak,\n";
    session.restart();
    session.moveTo(300, 300);
    const auto place = std::filesystem::path("kwin/effects/vantrel-presses/contents/code/main.js");
    const auto copy = std::filesystem::path(session.environment().at("XDG_DATA_HOME")) / place;
    const auto shipped = readFile(std::filesystem::path(VANTREL_DATA) / place);
    std::optional program(vantrel.start({"--settings"}));
    EXPECT_TRUE(tells("marks", "kwin"));
    EXPECT_TRUE(tells("hotkeyError", nullptr));
    EXPECT_TRUE(tells("clickAvailable", true));
    EXPECT_TRUE(waitFor([&] { return session.isMarked(); }));
    EXPECT_FALSE(std::filesystem::exists(copy));
    // Only KWin is answered.
    EXPECT_ANY_THROW(session.call(QStringLiteral("org.vantrel.KWinMarks1"),
                                  QStringLiteral("/org/vantrel/KWinMarks1"),
                                  "org.vantrel.KWinMarks1", "Next", {0}));

    // A window gets the keys of other combinations only.
    const auto window = session.startFullScreenWindow();
    const auto hold = [&](int key, bool down, int modifier = KEY_LEFTALT) {
        session.client().type(KEY_LEFTCTRL, down);
        session.client().type(modifier, down);
        session.client().type(key, down);
    };
    const auto type = [&](int key) {
        hold(key, true);
        hold(key, false);
    };
    const auto keys = [&](int key) { return window.count("key-" + std::to_string(key)); };
    session.client().type(KEY_CAPSLOCK, true);
    session.client().type(KEY_CAPSLOCK, false);
    type(KEY_L);
    EXPECT_TRUE(tells("mode", "laser"));
    type(KEY_K);
    EXPECT_TRUE(waitFor([&] { return keys(KEY_K) == 1; }));
    EXPECT_EQ(keys(KEY_L), 0);
    hold(KEY_L, true);
    EXPECT_TRUE(tells("mode", "off"));
    EXPECT_FALSE(waitFor([&] { return vantrel.status()["mode"] != "off"; }, 1500ms));
    hold(KEY_L, false);
    hold(KEY_1, true, KEY_LEFTSHIFT);
    hold(KEY_1, false, KEY_LEFTSHIFT);
    EXPECT_TRUE(tells("mode", "highlight"));
    type(KEY_L);
    EXPECT_TRUE(tells("mode", "laser"));
    // By the places of the keys, whatever they produce.
    for (const auto layout : {2U, 1U}) {
        const auto mode = vantrel.status()["mode"];
        session.call(QStringLiteral("org.kde.keyboard"), QStringLiteral("/Layouts"),
                     "org.kde.KeyboardLayouts", "setLayout", {layout});
        EXPECT_TRUE(waitFor([&] {
            type(KEY_L);
            return waitFor([&] { return vantrel.status()["mode"] != mode; }, 500ms);
        }));
    }

    // Whoever asks for the settings sees them.
    const auto isInFront = [&] {
        return session.evaluate("String((workspace.activeWindow || workspace.activeClient)"
                                ".resourceClass)") == "vantrel";
    };
    EXPECT_FALSE(isInFront());
    vantrel.start({"settings"}).wait(10s);
    EXPECT_TRUE(waitFor(isInFront));

    // However it ends, all of it is gone, and the keys are the window's. A machine with nothing
    // else to do needs less than half a second.
    const auto killed = std::chrono::steady_clock::now();
    program->signal(SIGKILL);
    EXPECT_TRUE(waitFor([&] { return session.hasNothing(); }));
    EXPECT_LT(std::chrono::steady_clock::now() - killed, 2s);
    const auto before = keys(KEY_L);
    EXPECT_TRUE(waitFor([&] {
        type(KEY_L);
        return waitFor([&] { return keys(KEY_L) > before; }, 500ms);
    }));
    const auto isClean = [&](const char* file) {
        return readFile(session.folder() / "config" / file).find("antrel") == std::string::npos;
    };
    EXPECT_TRUE(waitFor([&] { return isClean("kglobalshortcutsrc"); }, 30s));

    // Where the other layout has D, with which KWin has a shortcut of its own.
    stored["laserShortcut"] = {{"keyCode", 4}, {"modifiers", 0x100}, {"display", "⌘H"}};
    stored["highlightShortcut"] = {{"keyCode", 89}, {"modifiers", 0x1800}, {"display", "⌃⌥7"}};
    writePreferences(session.folder() / "config", stored);
    std::filesystem::create_directories(copy.parent_path());
    std::ofstream(copy) << "an earlier version's";
    program.emplace(vantrel.start({"--settings"}));
    EXPECT_TRUE(tells("hotkeyError", "registration"));
    EXPECT_TRUE(waitFor([&] { return readFile(copy) == shipped; }));
    session.restart();
    session.moveTo(300, 300);
    EXPECT_TRUE(waitFor([&] { return session.isMarked(); }));
    EXPECT_TRUE(waitFor([&] {
        type(KEY_KP7);
        return waitFor([&] { return vantrel.status()["mode"] == "off"; }, 500ms);
    }));

    // The program does not know where its item was clicked.
    session.moveTo(600, 100);
    session.call(QStringLiteral("org.vantrel.Vantrel"), QStringLiteral("/StatusNotifierItem"),
                 "org.kde.StatusNotifierItem", "Activate", {0, 0});
    const auto panels = [&] {
        return session.evaluate(
            "(workspace.windowList ? workspace.windowList() : workspace.clientList())"
            ".filter(window => !window.resizeable && !window.fullScreen)"
            ".map(window => window.frameGeometry)");
    };
    EXPECT_TRUE(waitFor([&] {
        const auto found = panels();
        return found.size() == 1 && found[0]["y"] == 108 && found[0]["x"] > 400 &&
               found[0]["x"] < 600;
    }));
    const auto inFront = session.startFullScreenWindow();
    EXPECT_TRUE(waitFor([&] { return panels().empty(); }));

    // KWin keeps the keys of a program that is killed together with it.
    EXPECT_FALSE(isClean("kglobalshortcutsrc"));
    program->signal(SIGSTOP);
    session.restart();
    program->signal(SIGKILL);
    stored["laserShortcut"] = stored["highlightShortcut"];
    writePreferences(session.folder() / "config", stored);
    program.emplace(vantrel.start({"--settings"}));
    EXPECT_TRUE(waitFor([&] { return isClean("kglobalshortcutsrc"); }, 30s));
    vantrel.start({"quit"}).wait(10s);
    EXPECT_TRUE(waitFor([&] { return session.hasNothing(); }));
    EXPECT_TRUE(waitFor([&] { return isClean("kglobalshortcutsrc"); }, 30s));
    EXPECT_TRUE(isClean("kwinrc"));
}

} // namespace
} // namespace vantrel::desktop
