#include "overlay/effect.h"
#include "platform/gnome/effect_message.h"
#include "platform/gnome/shell_extension.h"
#include "support/mark_pixels.h"
#include "testdesk/core_application.h"
#include "testdesk/gnome_session.h"
#include "testdesk/headless/user_defaults.h"
#include "testdesk/temporary_folder.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <QDBusConnectionInterface>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// A session that shows marks, and is left without a fault of theirs.
class Session : public GnomeSession {
public:
    explicit Session(Options options = {}) : GnomeSession(withData(std::move(options))) {
        EXPECT_TRUE(switchExtension(extension(), true));
        EXPECT_TRUE(waitFor([&] { return bus().interface()->isServiceRegistered(agent).value(); }));
        moveTo(300, 150);
    }
    ~Session() { EXPECT_EQ(complaints(), ""); }

    [[nodiscard]] QString extension() const { return extensionFor(QString::number(version())); }
    // The error's name, if there is one.
    [[nodiscard]] std::string errorOf(const QDBusConnection& caller, const char* method,
                                      const QVariantList& arguments = {}) const {
        auto message = QDBusMessage::createMethodCall(agent, QStringLiteral("/org/vantrel/Marks1"),
                                                      agent, QString::fromLatin1(method));
        message.setArguments(arguments);
        return caller.call(message).errorName().toStdString();
    }
    void show(const Effect& effect) const {
        EXPECT_EQ(errorOf(bus(), "Show", {messageOf(effect)}), "");
    }
    // The pictures that can be seen, of the mark and of rings.
    [[nodiscard]] int countPictures() const {
        return evaluate("Main.layoutManager.uiGroup.get_children()"
                        "    .filter(actor => actor.name === 'vantrel')"
                        "    .flatMap(actor => actor.get_children())"
                        "    .filter(actor => actor.visible).length");
    }
    [[nodiscard]] bool comesToShow(int count) const {
        return waitFor([&] { return countPictures() == count; });
    }
    // Counts from now on how often pictures come to be seen, and how many at a time.
    void watchPictures() const {
        evaluate("global.vantrelShown = 0;"
                 "global.vantrelMost = 0;"
                 "const pictures = Main.layoutManager.uiGroup.get_children()"
                 "    .find(actor => actor.name === 'vantrel').get_children();"
                 "pictures.forEach(picture => picture.connect('show', () => {"
                 "    global.vantrelShown++;"
                 "    global.vantrelMost = Math.max(global.vantrelMost,"
                 "        pictures.filter(({visible}) => visible).length);"
                 "})); 1");
    }
    [[nodiscard]] int shownPictures() const { return evaluate("global.vantrelShown"); }
    // Waits until the pointer is marked so.
    void expectMark(const Effect& effect, const std::string& where) const {
        Differences last;
        EXPECT_TRUE(waitFor(
            [&] {
                const auto shown = picture();
                const auto center = (pointer() * shown.width() / width()).toPoint();
                last = differences(shown, center, effect, scale());
                return last.elsewhere <= 6 && last.onEdges <= 60;
            },
            3s))
            << where << ": " << last.elsewhere << ", on edges " << last.onEdges;
    }
    // Of all displays, in the units of places.
    [[nodiscard]] double width() const { return evaluate("global.stage.width"); }
    // Pixels for each point.
    [[nodiscard]] double scale() const { return evaluate("global.display.get_monitor_scale(0)"); }

    static inline const auto agent = QStringLiteral("org.vantrel.Marks1");

private:
    static Options withData(Options options) {
        options.dataFolder = VANTREL_DATA;
        return options;
    }
};

AppPreferences strongly() {
    AppPreferences preferences;
    preferences.highlight.opacity = 0.9;
    return preferences;
}

struct Displays {
    GnomeSession::Options options;
    double place = 301; // from the left, as the shell counts
};

class GnomeLookTest : public testing::TestWithParam<Displays> {};

TEST_P(GnomeLookTest, ShowsEachEffectAsItIsPaintedElsewhere) {
    const CoreApplication application;
    const Session session(GetParam().options);
    session.moveTo(GetParam().place, 300);
    auto preferences = strongly();
    for (const auto style : {HighlightStyle::filled, HighlightStyle::ring, HighlightStyle::glow}) {
        preferences.highlight.style = style;
        const auto effect = effectOf(CursorMode::highlight, preferences);
        session.show(effect);
        session.expectMark(effect, "style " + std::to_string(static_cast<int>(style)));
    }
    const auto laser = effectOf(CursorMode::laser, preferences);
    session.show(laser);
    session.expectMark(laser, "laser");

    // A ring is the fainter the larger it has become.
    session.show({.left = slowRing});
    session.click(BTN_LEFT);
    EXPECT_TRUE(waitFor([&] {
        const auto picture = session.picture();
        const auto center = (session.pointer() * picture.width() / session.width()).toPoint();
        return showsPartOf(slowRing, picture, center, session.scale());
    }));
}

INSTANTIATE_TEST_SUITE_P(
    Scales, GnomeLookTest,
    testing::Values(Displays{}, Displays{.options = {.scale = 2}},
                    Displays{.options = {.monitors = {"1200x720"}, .scales = {1.5}}},
                    Displays{.options = {.monitors = {"1200x720", "640x480"}, .scales = {1.5, 1}},
                             .place = 799}));

TEST(GnomeTest, PlaysARingForEachPressAboveEverything) {
    const CoreApplication application;
    Session session;
    const auto window = session.startFullScreenWindow();
    Effect effect = effectOf(CursorMode::highlight, strongly());
    effect.left->duration = 30;
    session.show(effect);
    // A window that comes to lie under the pointer may hear of it with the next motion only.
    double place = 300;
    ASSERT_TRUE(waitFor([&] {
        session.moveTo(++place, 300);
        return waitFor([&] { return window.count("enter") > 0; }, 500ms);
    }));
    constexpr int most = 8;
    const auto click = [&](int count) {
        for (int press = 0; press < count; ++press) {
            session.click(BTN_LEFT);
        }
    };
    click(most);
    EXPECT_TRUE(session.comesToShow(1 + most));
    session.watchPictures();
    click(100 - most);
    EXPECT_TRUE(waitFor([&] { return window.count("press") == 100; }));
    EXPECT_TRUE(waitFor([&] { return session.shownPictures() == 100 - most; }));
    EXPECT_EQ(session.evaluate("global.vantrelMost"), 1 + most);
    // Of another button, and without that ring.
    effect.right.reset();
    session.show(effect);
    session.click(BTN_RIGHT);
    EXPECT_TRUE(waitFor([&] { return window.count("press") == 101; }));
    EXPECT_EQ(session.shownPictures(), 100 - most);
}

TEST(GnomeTest, StaysAboveMenusAndLetsGoOfTheScreenAtRest) {
    const CoreApplication application;
    Session session;
    Effect effect = effectOf(CursorMode::laser, strongly());
    effect.hideAfter = 0.3;
    session.show(effect);
    EXPECT_TRUE(session.comesToShow(0));
    session.watchPictures();
    session.moveTo(640, 120);
    EXPECT_TRUE(waitFor([&] { return session.shownPictures() > 0; }));
    EXPECT_TRUE(session.comesToShow(0));
    const int shown = session.shownPictures();
    session.click(BTN_LEFT);
    EXPECT_TRUE(waitFor([&] { return session.shownPictures() == shown + 1; }));

    effect.hideAfter.reset();
    session.show(effect);
    session.evaluate("Main.panel.statusArea.dateMenu.menu.open(); 1");
    EXPECT_TRUE(waitFor([&] {
        return session.evaluate("Main.layoutManager.uiGroup.get_last_child().name") == "vantrel";
    }));
}

TEST(GnomeTest, ServesOneProgramAndForgetsItWhenItIsGone) {
    const CoreApplication application;
    const Session session;
    const auto effect = effectOf(CursorMode::laser, {});
    const auto address = session.environment().at("DBUS_SESSION_BUS_ADDRESS");
    const auto name = QStringLiteral("other");
    std::optional other(QDBusConnection::connectToBus(QString::fromStdString(address), name));
    EXPECT_EQ(session.errorOf(*other, "Show", {messageOf(effect)}), "");
    EXPECT_TRUE(session.comesToShow(1));
    EXPECT_EQ(session.errorOf(session.bus(), "Show", {messageOf(effect)}),
              "org.vantrel.Marks1.Error.Busy");
    EXPECT_EQ(session.errorOf(session.bus(), "Clear"), "org.vantrel.Marks1.Error.Busy");
    EXPECT_EQ(session.errorOf(*other, "Clear"), "");
    EXPECT_TRUE(session.comesToShow(0));
    EXPECT_EQ(session.errorOf(*other, "Show", {messageOf(effect)}), "");
    EXPECT_TRUE(session.comesToShow(1));
    other.reset();
    QDBusConnection::disconnectFromBus(name);
    EXPECT_TRUE(session.comesToShow(0));

    // As when the screen is locked and unlocked: what was shown is the program's to tell again.
    session.show(effect);
    EXPECT_TRUE(session.comesToShow(1));
    session.evaluate("Main.sessionMode.pushMode('unlock-dialog'); 1");
    EXPECT_TRUE(session.comesToShow(0));
    session.evaluate("Main.sessionMode.popMode('unlock-dialog'); 1");
    EXPECT_TRUE(waitFor([&] { return session.errorOf(session.bus(), "Clear").empty(); }));
    EXPECT_EQ(session.countPictures(), 0);
}

TEST(GnomeTest, RefusesWhatCannotBeShown) {
    const CoreApplication application;
    const Session session;
    const auto refuses = [&](const QVariantMap& effect) {
        return session.errorOf(session.bus(), "Show", {effect}) ==
               "org.freedesktop.DBus.Error.InvalidArgs";
    };
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const auto disc = [](double diameter, double width, std::vector<ColorStop> stops) {
        return messageOf({.discs = {{diameter, width, std::move(stops)}}});
    };
    const auto ring = [](auto change) {
        Effect effect{.left = clickRing(ClickStyle::ripple, Qt::red)};
        change(*effect.left);
        return messageOf(effect);
    };
    EXPECT_FALSE(refuses(disc(4096, 0, {{0, Qt::red}})));
    EXPECT_FALSE(refuses(ring([](auto&) {})));
    for (const auto& [what, effect] : std::map<std::string, QVariantMap>{
             {"too large", disc(4097, 0, {{0, Qt::red}})},
             {"no number", disc(std::nan(""), 0, {{0, Qt::red}})},
             {"negative", disc(-1, 0, {{0, Qt::red}})},
             {"line wider than the disc", disc(10, 11, {{0, Qt::red}})},
             {"without colours", disc(10, 0, {})},
             {"stops in disorder", disc(10, 0, {{0.5, Qt::red}, {0.4, Qt::red}})},
             {"stop beyond the edge", disc(10, 0, {{1.5, Qt::red}})},
             {"too many stops", disc(10, 0, std::vector(17, ColorStop{0, Qt::red}))},
             {"too many discs", messageOf({.discs = std::vector(17, Disc{10, 0, {{0, Qt::red}}})})},
             {"endless ring", ring([](auto& click) { click.duration = infinite; })},
             {"instant ring", ring([](auto& click) { click.duration = 0; })},
             {"infinite ring", ring([](auto& click) { click.endDiameter = infinite; })},
             {"rest without end", messageOf({.hideAfter = infinite})},
             {"another type", {{QStringLiteral("idle"), QStringLiteral("1")}}},
             {"unknown", {{QStringLiteral("toString"), 1.0}}},
         }) {
        EXPECT_TRUE(refuses(effect)) << what;
    }
    EXPECT_NE(session.errorOf(session.bus(), "Show", {1}), "");
}

TEST(GnomeTest, TheProgramHasItsMarksAndShortcutsFromTheShell) {
    const CoreApplication application;
    Session session;
    session.switchExtension(session.extension(), false);
    auto stored = preferencesShowing("highlight");
    writePreferences(session.folder() / "config", stored);
    const auto start = [&](std::vector<std::string> words) {
        words.insert(words.begin(), VANTREL_PROGRAM);
        return ChildProcess({.arguments = words,
                             .environment = session.environment(),
                             .output = session.folder() / words.back()});
    };
    const auto status = [&] {
        start({"status", "--json"}).wait(10s);
        return nlohmann::json::parse(readFile(session.folder() / "--json"), nullptr, false);
    };
    const auto tells = [&](const char* key, const nlohmann::json& value) {
        return waitFor([&] {
            const auto all = status();
            return all.is_object() && all.at(key) == value;
        });
    };
    std::optional program(start({"--settings"}));
    EXPECT_TRUE(tells("marksMissing", "switchedOff"));
    EXPECT_EQ(status().at("marks"), "xwayland");
    session.switchExtension(session.extension(), true);
    EXPECT_TRUE(tells("marks", "gnome-shell"));
    EXPECT_EQ(status().at("marksMissing"), nullptr);
    EXPECT_EQ(status().at("hotkeyError"), nullptr);
    EXPECT_TRUE(session.comesToShow(1));

    // A window gets the keys of other combinations only.
    const auto window = session.startFullScreenWindow();
    const auto type = [&](int key) {
        for (const bool down : {true, false}) {
            session.type(KEY_LEFTCTRL, down);
            session.type(KEY_LEFTALT, down);
            session.type(key, down);
        }
    };
    type(KEY_L);
    EXPECT_TRUE(tells("mode", "laser"));
    type(KEY_K);
    EXPECT_TRUE(waitFor([&] { return window.count("key-" + std::to_string(KEY_K)) == 1; }));
    EXPECT_EQ(window.count("key-" + std::to_string(KEY_L)), 0);

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
    writePreferences(session.folder() / "config", stored);
    program.emplace(start({"--settings"}));
    EXPECT_TRUE(session.comesToShow(1));
    EXPECT_TRUE(tells("hotkeyError", "registration")); // the shell's own
    session.evaluate("Main.sessionMode.pushMode('unlock-dialog'); 1");
    EXPECT_TRUE(session.comesToShow(0));
    EXPECT_TRUE(tells("marks", "xwayland"));
    session.evaluate("Main.sessionMode.popMode('unlock-dialog'); 1");
    EXPECT_TRUE(session.comesToShow(1));
    EXPECT_TRUE(tells("marks", "gnome-shell"));
    type(KEY_H);
    EXPECT_TRUE(tells("mode", "off"));
    EXPECT_TRUE(session.comesToShow(0));
}

TEST(GnomeTest, TheMarkComesAndGoesWithinHalfASecond) {
    const CoreApplication application;
    const Session session;
    writePreferences(session.folder() / "config", preferencesShowing("highlight"));
    std::optional<ChildProcess> program;
    const auto start = [&] {
        program.emplace(
            Command{.arguments = {VANTREL_PROGRAM}, .environment = session.environment()});
    };
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
            const auto before = std::chrono::steady_clock::now().time_since_epoch();
            step.take();
            EXPECT_TRUE(session.comesToShow(step.shown)) << step.name;
            const std::chrono::microseconds changed(
                session.evaluate("global.vantrelChanged").get<std::int64_t>());
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
    const Session session;
    writePreferences(session.folder() / "config", preferencesShowing("off"));
    const ChildProcess program(
        {.arguments = {VANTREL_PROGRAM}, .environment = session.environment()});
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
    EXPECT_TRUE(waitFor([&] { return hover(item); }));
    EXPECT_TRUE(find(laser).is_null());
    EXPECT_TRUE(press(item, BTN_RIGHT, [&] { return !find(laser).is_null(); }));
    EXPECT_TRUE(press(laser, BTN_LEFT, [&] { return session.countPictures() == 1; }));
    // The panel opens below the item.
    EXPECT_TRUE(press("part.accessible_name === 'Vantrel laser'", BTN_LEFT, [&] {
        const auto pointer = session.pointer();
        const auto windows = session.evaluate("global.get_window_actors().map(window => {"
                                              "    const {x, y, width, height} ="
                                              "        window.meta_window.get_frame_rect();"
                                              "    return [x, y, width, height];})");
        return std::ranges::any_of(windows, [&](const auto& window) {
            const QRect area(window[0], window[1], window[2], window[3]);
            return area.top() < 60 && area.contains(qRound(pointer.x()), 100);
        });
    }));
}

TEST(GnomeTest, TheShellFindsWhatWasAskedForAtTheNextLogin) {
    const CoreApplication application;
    headless::UserDefaults defaults;
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
        EXPECT_TRUE(std::filesystem::exists(
            session.folder() / "data/gnome-shell/extensions" /
            extensionFor(QString::number(session.version())).toStdString() / "extension.js"));
    }
    const TemporaryFolder installation;
    std::filesystem::copy(VANTREL_DATA, installation.path(),
                          std::filesystem::copy_options::recursive);
    const GnomeSession session({.dataFolder = installation.path()});
    const ShellExtension shell(session.bus(), defaults, installation.path());
    EXPECT_TRUE(comesTo(shell, MarksState::available));

    // Once it is no longer installed, its name goes too.
    const auto isNamed = [&](const char* list) {
        const auto names =
            session.evaluate(std::string("global.settings.get_strv('") + list + "-extensions')");
        return !names.empty();
    };
    EXPECT_TRUE(isNamed("enabled"));
    std::filesystem::remove_all(installation.path() / "gnome-shell");
    const auto extension = extensionFor(QString::number(session.version()));
    session.switchExtension(extension, false);
    EXPECT_TRUE(waitFor([&] { return !isNamed("enabled") && !isNamed("disabled"); }));
}

TEST(GnomeTest, SaysWhatIsMissing) {
    using enum MarksState;
    struct Case {
        ShellReport report;
        MarksState state;
    };
    const auto extension = [](ExtensionState state) {
        return ShellReport{.hasShell = true, .extension = state};
    };
    for (const auto& [report, state] :
         {Case{{}, none}, Case{{.hasShell = true}, off},
          Case{{.hasShell = true, .isAwaited = true}, needsLogin},
          Case{extension(ExtensionState::disabled), off},
          Case{extension(ExtensionState::initialized), off},
          Case{extension(ExtensionState::error), failed},
          Case{extension(ExtensionState::outOfDate), unsupported},
          Case{{.hasShell = true, .version = extensionVersion}, available},
          Case{{.hasShell = true, .version = extensionVersion + 1}, otherVersion},
          Case{{.hasShell = true, .version = extensionVersion, .servesOther = true}, busy},
          Case{{.hasShell = true, .version = extensionVersion, .hasFailed = true}, failed}}) {
        EXPECT_EQ(stateOf(report), state);
    }
    EXPECT_EQ(extensionFor(QStringLiteral("44.1")), QStringLiteral("marks43@vantrel.org"));
    EXPECT_EQ(extensionFor(QStringLiteral("45.beta")), QStringLiteral("marks@vantrel.org"));
}

} // namespace
} // namespace vantrel::desktop
