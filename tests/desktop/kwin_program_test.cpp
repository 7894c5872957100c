#include "support/kwin_fixture.h"
#include "support/under_test.h"
#include "testdesk/core_application.h"
#include "testdesk/program_of.h"
#include "testdesk/vantrel_program.h"

#include <chrono>
#include <filesystem>
#include <fstream>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

TEST(KWinTest, TheProgramHasItsMarksAndShortcutsFromKWin) {
    const CoreApplication application;
    MarkedKWin session;
    auto stored = preferencesShowing("highlight");
    stored["highlight"]["opacity"] = 0.9;
    const ProgramOf vantrel(session, programUnderTest());
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
