#include "platform/gnome/shell_extension.h"
#include "support/gnome_fixture.h"
#include "support/under_test.h"
#include "testdesk/core_application.h"
#include "testdesk/headless/user_defaults.h"
#include "testdesk/program_of.h"
#include "testdesk/status_notifier_host.h"
#include "testdesk/temporary_folder.h"
#include "testdesk/vantrel_program.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

TEST(GnomeTest, TheProgramHasItsMarksAndShortcutsFromTheShell) {
    const CoreApplication application;
    MarkingSession session;
    session.switchExtension(session.extension(), false);
    auto stored = preferencesShowing("highlight");
    writePreferences(session.folder() / "config", stored);
    const ProgramOf vantrel(session, programUnderTest());
    const auto tells = [&](const char* key, const auto& value) {
        return vantrel.tells(key, value);
    };
    std::optional program(vantrel.start({"--settings"}));
    EXPECT_TRUE(tells("marksMissing", "switchedOff"));
    EXPECT_EQ(vantrel.status().at("marks"), "xwayland");
    session.switchExtension(session.extension(), true);
    EXPECT_TRUE(tells("marks", "gnome-shell"));
    EXPECT_EQ(vantrel.status().at("marksMissing"), nullptr);
    EXPECT_EQ(vantrel.status().at("hotkeyError"), nullptr);
    EXPECT_TRUE(session.comesToShow(1));

    // A window gets the keys of other combinations only.
    const auto window = session.startFullScreenWindow();
    const auto type = [&](int key) { session.typeChord({KEY_LEFTCTRL, KEY_LEFTALT, key}); };
    type(KEY_L);
    EXPECT_TRUE(tells("mode", "laser"));
    type(KEY_K);
    EXPECT_TRUE(waitFor([&] { return window.count("key-" + std::to_string(KEY_K)) == 1; }));
    EXPECT_EQ(window.count("key-" + std::to_string(KEY_L)), 0);
    for (const int lock : {KEY_CAPSLOCK, KEY_NUMLOCK}) {
        session.typeChord({lock});
        type(KEY_L);
        EXPECT_TRUE(tells("mode", "off")) << lock;
        type(KEY_L);
        EXPECT_TRUE(tells("mode", "laser")) << lock;
        session.typeChord({lock});
    }

    // In menus and the overview too.
    session.evaluate("Main.panel.statusArea.dateMenu.menu.open(); 1");
    type(KEY_H);
    EXPECT_TRUE(tells("mode", "highlight"));
    session.evaluate("Main.panel.statusArea.dateMenu.menu.close(); Main.overview.show(); 1");
    type(KEY_L);
    EXPECT_TRUE(tells("mode", "laser"));
    session.evaluate("Main.overview.hide(); 1");

    // However it goes and comes, and when the screen is unlocked.
    program->signal(SIGKILL);
    EXPECT_TRUE(session.comesToShow(0));
    stored["laserShortcut"] = {{"keyCode", 1}, {"modifiers", 0x100}, {"display", "⌘S"}};
    stored["highlightShortcut"] = {{"keyCode", 18}, {"modifiers", 6144}, {"display", "⌃⌥1"}};
    writePreferences(session.folder() / "config", stored);
    program.emplace(vantrel.start({"--settings"}));
    EXPECT_TRUE(session.comesToShow(1));
    EXPECT_TRUE(tells("hotkeyError", "registration")); // the shell's own
    session.evaluate("Main.sessionMode.pushMode('unlock-dialog'); 1");
    EXPECT_TRUE(session.comesToShow(0));
    EXPECT_TRUE(tells("marks", nullptr)); // it was not needed at the start
    session.evaluate("Main.sessionMode.popMode('unlock-dialog'); 1");
    EXPECT_TRUE(session.comesToShow(1));
    EXPECT_TRUE(tells("marks", "gnome-shell"));
    type(KEY_1);
    EXPECT_TRUE(tells("mode", "off"));
    EXPECT_TRUE(session.comesToShow(0));

    // While another program is served, and after it.
    program->signal(SIGKILL);
    stored["lastMode"] = "off";
    writePreferences(session.folder() / "config", stored);
    const auto other = QStringLiteral("other");
    const auto address = session.environment().at("DBUS_SESSION_BUS_ADDRESS");
    std::optional bus(QDBusConnection::connectToBus(QString::fromStdString(address), other));
    EXPECT_TRUE(waitFor([&] { return session.errorOf(*bus, "Clear").empty(); }));
    program.emplace(vantrel.start({"--settings"}));
    EXPECT_TRUE(tells("marksMissing", "busy"));
    bus.reset();
    QDBusConnection::disconnectFromBus(other);
    EXPECT_TRUE(tells("marks", "gnome-shell"));
    EXPECT_TRUE(waitFor([&] {
        type(KEY_1);
        return waitFor([&] { return vantrel.status()["mode"] == "highlight"; }, 2s);
    }));
}

TEST(GnomeTest, RecordsCombinationsThatTheShellTakesOtherwise) {
    const CoreApplication application;
    const MarkingSession session({.monitors = {"1280x800"}}); // for a window of its full height
    writePreferences(session.folder() / "config", preferencesShowing("off"));
    const ProgramOf vantrel(session, programUnderTest());
    const auto program = vantrel.start({"--settings"});
    EXPECT_TRUE(vantrel.tells("marks", "gnome-shell"));
    const auto comesToBe = [&](const std::string& what) {
        return waitFor([&] { return session.evaluate(what) == true; });
    };
    const auto hasKeyboard = [&] {
        return comesToBe("global.display.focus_window?.title === 'Vantrel'");
    };
    ASSERT_TRUE(hasKeyboard());
    session.evaluate("const manager = global.window_manager;"
                     "const {connect} = manager;"
                     "manager.connect = (...handler) => {"
                     "    global.vantrelLeft = true;"
                     "    return connect.apply(manager, handler);"
                     "}; 1");
    // On the page with the shortcuts, the first of them. A program that has just come to the screen
    // may miss a click.
    const auto record = [&] {
        session.evaluate("global.vantrelLeft = false; 1");
        return waitFor([&] {
            // Below the frame, that is from the bottom.
            const auto corner = session.evaluate("const {x, y, height} ="
                                                 "    global.display.focus_window.get_frame_rect();"
                                                 "[x, y + height - 640]");
            for (const QPoint place : {QPoint(279, 180), QPoint(409, 374)}) {
                session.moveTo(corner[0].get<int>() + place.x(), corner[1].get<int>() + place.y());
                session.click(BTN_LEFT);
            }
            return waitFor([&] { return session.evaluate("global.vantrelLeft") == true; }, 1s);
        });
    };
    const std::vector<int> applications{KEY_LEFTMETA, KEY_A}; // which opens the overview
    const auto opensOverview = [&] {
        session.typeChord(applications);
        const bool opens = comesToBe("Main.overview.visible");
        session.evaluate("Main.overview.hide(); 1");
        return opens && comesToBe("!Main.overview.visible");
    };
    EXPECT_TRUE(record());
    session.typeChord(applications);
    EXPECT_TRUE(vantrel.tells("hotkeyError", "registration"));
    EXPECT_EQ(session.evaluate("Main.overview.visible"), false);
    EXPECT_TRUE(opensOverview());
    // The program's own are recorded too, and not carried out.
    ASSERT_TRUE(hasKeyboard());
    EXPECT_TRUE(record());
    session.typeChord({KEY_LEFTCTRL, KEY_LEFTALT, KEY_L});
    EXPECT_TRUE(vantrel.tells("hotkeyError", "duplicate"));
    EXPECT_EQ(vantrel.status().at("mode"), "off");
    // Other windows leave them to the shell as ever, whatever the program has not noticed yet.
    EXPECT_TRUE(record());
    program.signal(SIGSTOP);
    const auto window = session.startFullScreenWindow();
    EXPECT_TRUE(opensOverview());
    program.signal(SIGCONT);
    // Whoever asks for the settings sees them.
    ASSERT_EQ(session.evaluate("global.display.focus_window?.title === 'Vantrel'"), false);
    vantrel.start({"settings"}).wait(10s);
    EXPECT_TRUE(hasKeyboard());
}

TEST(GnomeTest, TheMarkComesAndGoesWithinHalfASecond) {
    const CoreApplication application;
    const MarkingSession session;
    writePreferences(session.folder() / "config", preferencesShowing("highlight"));
    const ProgramOf vantrel(session, programUnderTest());
    std::optional<ChildProcess> program;
    const auto start = [&] { program.emplace(vantrel.start()); };
    const auto lock = [&](const char* change) {
        session.evaluate(std::string("Main.sessionMode.") + change + "Mode('unlock-dialog'); 1");
    };
    start();
    EXPECT_TRUE(session.comesToShow(1));
    // By the clock of this test, too.
    session.evaluate("const group = Main.layoutManager.uiGroup;"
                     "let had = true;"
                     "group.connect('notify::last-child', () => {"
                     "    const has = group.get_children().some(({name}) => name === 'vantrel');"
                     "    if (has !== had)"
                     "        global.vantrelChanged = imports.gi.GLib.get_monotonic_time();"
                     "    had = has;"
                     "}); 1");
    struct Step {
        const char* name;
        std::function<void()> take;
        int shown;
        std::chrono::microseconds limit = 500ms;
        // The shortest of all times, since the machine may have had other things to do.
        std::chrono::microseconds took = 1h;
    };
    std::vector<Step> steps{
        {"killed", [&] { program->signal(SIGKILL); }, 0},
        {"started", start, 1, 10s},
        {"locked", [&] { lock("push"); }, 0},
        {"unlocked", [&] { lock("pop"); }, 1},
        {"disabled", [&] { session.switchExtension(session.extension(), false); }, 0},
        {"enabled", [&] { session.switchExtension(session.extension(), true); }, 1},
    };
    for (int round = 0; round < 3; ++round) {
        for (auto& step : steps) {
            session.evaluate("global.vantrelChanged = 0; 1");
            const auto before = std::chrono::steady_clock::now().time_since_epoch();
            step.take();
            EXPECT_TRUE(session.comesToShow(step.shown)) << step.name;
            const std::chrono::microseconds changed(
                session.evaluate("global.vantrelChanged").get<std::int64_t>());
            EXPECT_GT(changed, 0us) << step.name;
            step.took = std::min(
                step.took, std::chrono::duration_cast<std::chrono::microseconds>(changed - before));
        }
    }
    for (const auto& step : steps) {
        EXPECT_LT(step.took, step.limit) << step.name;
    }
}

TEST(GnomeTest, TheProgramHasAnItemInTheTopBar) {
    const CoreApplication application;
    MarkingSession session;
    writePreferences(session.folder() / "config", preferencesShowing("off"));
    auto program = ProgramOf(session, programUnderTest()).start();
    // The middle of the first part of the shell for which that is true, and whether it would get a
    // press; null without one.
    const auto find = [&](const std::string& condition) {
        return session.evaluate("const all = part => [part, ...part.get_children().flatMap(all)];"
                                "const found = all(Main.layoutManager.uiGroup).find(part =>"
                                "    part.mapped && part.has_allocation() && " +
                                condition +
                                ");"
                                "const target = part => part.reactive ? part"
                                "    : target(part.get_parent());"
                                "const middle = ([x, y], [width, height]) =>"
                                "    [x + width / 2, y + height / 2];"
                                "found ? [...middle(found.get_transformed_position(),"
                                "    found.get_transformed_size()), target(found).has_pointer]"
                                "    : null");
    };
    const auto hover = [&](const std::string& condition) {
        const auto part = find(condition);
        if (part.is_null()) {
            return false;
        }
        session.moveTo(part[0], part[1]);
        return waitFor([&] { return find(condition)[2] == true; }, 1s);
    };
    // The shell loses a press now and then. It is repeated only where nothing has come of it, for a
    // second press would undo what a busy shell has made of the first.
    const auto press = [&](const std::string& condition, int button,
                           const std::function<bool()>& hasCome) {
        return waitFor(
            [&] {
                if (hover(condition) && !hasCome()) {
                    session.press(button, true);
                    std::this_thread::sleep_for(50ms);
                    session.press(button, false);
                }
                return waitFor(hasCome, 5s);
            },
            40s);
    };
    const std::string laser = "part.text === 'Laser'";
    const std::string item = "part.accessible_name === 'Vantrel off'";
    const std::string itemOfLaser = "part.accessible_name === 'Vantrel laser'";
    EXPECT_TRUE(waitFor([&] { return hover(item); }));
    EXPECT_TRUE(find(laser).is_null());
    EXPECT_TRUE(press(item, BTN_RIGHT, [&] { return !find(laser).is_null(); }));
    EXPECT_TRUE(press(laser, BTN_LEFT, [&] { return session.countPictures() == 1; }));
    // The panel, a native window, opens below the item.
    const auto hasPanel = [&] {
        const auto pointer = session.pointer();
        const auto windows = session.evaluate("global.get_window_actors().filter(window =>"
                                              "    window.meta_window.get_client_type() === 0)"
                                              ".map(window => {"
                                              "    const {x, y, width, height} ="
                                              "        window.meta_window.get_frame_rect();"
                                              "    return [x, y, width, height];})");
        return std::ranges::any_of(windows, [&](const auto& window) {
            const QRect area(window[0], window[1], window[2], window[3]);
            return area.top() < 60 && area.contains(qRound(pointer.x()), 100);
        });
    };
    EXPECT_TRUE(press(itemOfLaser, BTN_LEFT, hasPanel));
    session.typeChord({KEY_ESC});
    EXPECT_TRUE(waitFor([&] { return !hasPanel(); }));
    session.evaluate("Main.panel.statusArea.vantrel.grab_key_focus(); 1");
    session.typeChord({KEY_ENTER});
    EXPECT_TRUE(waitFor(hasPanel));
    session.typeChord({KEY_ESC});
    EXPECT_TRUE(waitFor([&] { return !hasPanel(); }));
    session.evaluate("const {Clutter, GLib} = imports.gi;"
                     "const item = Main.panel.statusArea.vantrel;"
                     "const [x, y] = item.get_transformed_position();"
                     "const backend = global.stage.context?.get_backend() ??"
                     "    Clutter.get_default_backend();"
                     "global.vantrelFinger = backend.get_default_seat()"
                     "    .create_virtual_device(Clutter.InputDeviceType.TOUCHSCREEN_DEVICE);"
                     "const now = GLib.get_monotonic_time();"
                     "global.vantrelFinger.notify_touch_down(now, 0, x + 5, y + 5);"
                     "global.vantrelFinger.notify_touch_up(now + 50000, 0); 1");
    EXPECT_TRUE(waitFor(hasPanel));
    {
        const StatusNotifierHost host(session.sessionBus());
        EXPECT_TRUE(host.waitForItem());
        EXPECT_TRUE(waitFor([&] { return find(itemOfLaser).is_null(); }));
    }
    EXPECT_TRUE(waitFor([&] { return !find(itemOfLaser).is_null(); }));
    EXPECT_TRUE(press(itemOfLaser, BTN_RIGHT, [&] { return !find(laser).is_null(); }));
    program.signal(SIGKILL);
    EXPECT_TRUE(waitFor([&] { return find(itemOfLaser).is_null(); }));
    EXPECT_EQ(session.evaluate("Main.panel.menuManager.activeMenu ?? null"), nullptr);
}

TEST(GnomeTest, TheShellFindsWhatWasAskedForAtTheNextLogin) {
    const CoreApplication application;
    headless::UserDefaults defaults;
    QString uuid;
    const auto comesTo = [](const ShellExtension& shell, MarksState state) {
        return waitFor([&] {
            QCoreApplication::processEvents();
            return shell.state() == state;
        });
    };
    {
        const GnomeSession session({});
        setenv("XDG_DATA_HOME", (session.folder() / "data").c_str(), 1);
        ShellExtension shell(session.bus(), defaults, VANTREL_DATA);
        EXPECT_TRUE(comesTo(shell, MarksState::off));
        shell.enable();
        EXPECT_TRUE(comesTo(shell, MarksState::needsLogin));
        uuid = extensionFor(QString::number(session.version()));
        const auto copy = session.folder() / "data/gnome-shell/extensions" / uuid.toStdString();
        EXPECT_TRUE(std::filesystem::exists(copy / "extension.js"));
        // One that the shell does not take, or of another version, is replaced.
        std::filesystem::remove(copy / "extension.js");
        session.evaluate("Main.extensionManager.emit('extension-state-changed',"
                         "    {uuid: '" +
                         uuid.toStdString() + "', metadata: {}, state: 4}); 1");
        EXPECT_TRUE(comesTo(shell, MarksState::unsupported));
        EXPECT_TRUE(std::filesystem::exists(copy / "extension.js"));
    }
    const TemporaryFolder installation;
    std::filesystem::copy(VANTREL_DATA, installation.path(),
                          std::filesystem::copy_options::recursive);
    const auto extension =
        installation.path() / "gnome-shell/extensions" / uuid.toStdString() / "extension.js";
    const auto current = readFile(extension);
    const std::string version = "const Version = ";
    std::ofstream(extension) << std::string(current).insert(current.find(version) + version.size(),
                                                            "1 + ");
    GnomeSession session({.dataFolder = installation.path()});
    setenv("XDG_DATA_HOME", installation.path().c_str(), 1);
    setenv("XDG_DATA_DIRS", VANTREL_DATA, 1);
    const ShellExtension shell(session.bus(), defaults, VANTREL_DATA);
    EXPECT_TRUE(comesTo(shell, MarksState::otherVersion));
    EXPECT_EQ(readFile(extension), current);

    // Once it is no longer installed, its name goes too.
    const auto isNamed = [&](const char* list) {
        const auto names =
            session.evaluate(std::string("global.settings.get_strv('") + list + "-extensions')");
        return !names.empty();
    };
    EXPECT_TRUE(isNamed("enabled"));
    std::filesystem::remove_all(installation.path() / "gnome-shell");
    session.switchExtension(uuid, false);
    EXPECT_TRUE(waitFor([&] { return !isNamed("enabled") && !isNamed("disabled"); }));

    session.sessionBus().stop();
    EXPECT_TRUE(comesTo(shell, MarksState::none));
}

TEST(GnomeTest, SaysWhatIsMissing) {
    using enum MarksState;
    EXPECT_EQ(stateOf({.hasShell = true, .extension = ExtensionState::initialized}), off);
    EXPECT_EQ(stateOf({.hasShell = true, .extension = ExtensionState::error}), failed);
    EXPECT_EQ(stateOf({.hasShell = true, .version = extensionVersion, .servesOther = true}), busy);
    EXPECT_EQ(stateOf({.hasShell = true, .version = extensionVersion, .hasFailed = true}), failed);
    EXPECT_EQ(extensionFor(QStringLiteral("44.1")), QStringLiteral("marks43@vantrel.org"));
    EXPECT_EQ(extensionFor(QStringLiteral("45.beta")), QStringLiteral("marks@vantrel.org"));
}

} // namespace
} // namespace vantrel::desktop
