#include "platform/gnome/shell_extension.h"
#include "support/gnome_fixture.h"
#include "testdesk/core_application.h"
#include "testdesk/screen_cast.h"

#include <QDBusMetaType>

#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

struct Displays {
    GnomeSession::Options options;
    double place = 301; // from the left, as the shell counts
};

class GnomeLookTest : public testing::TestWithParam<Displays> {};

TEST_P(GnomeLookTest, ShowsEachEffectAsItIsPaintedElsewhere) {
    const CoreApplication application;
    const MarkingSession session(GetParam().options);
    session.moveTo(GetParam().place, 300);
    for (const auto& look : everyLook()) {
        session.show(look.effect());
        session.expectMark(look.effect(), look.name);
    }

    // A ring is the fainter the larger it has become.
    for (const auto& ring : {slowRing, slowPulse}) {
        session.show({.left = ring});
        session.click(BTN_LEFT);
        EXPECT_TRUE(waitFor([&] {
            const auto picture = session.picture();
            const auto center = (session.pointer() * picture.width() / session.width()).toPoint();
            return showsPartOf(ring, picture, center, session.scale());
        })) << ring.lineWidth;
        session.show({});
    }
}

INSTANTIATE_TEST_SUITE_P(
    Scales, GnomeLookTest,
    testing::Values(Displays{}, Displays{.options = {.scale = 2}},
                    Displays{.options = {.monitors = {"1200x720"}, .scales = {1.5}}},
                    Displays{.options = {.monitors = {"1200x720", "640x480"}, .scales = {1.5, 1}},
                             .place = 799}));

TEST(GnomeTest, PlaysARingForEachPressAboveEverything) {
    const CoreApplication application;
    MarkingSession session;
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
    EXPECT_TRUE(waitFor([&] {
        const QColor middle = session.picture().pixelColor(static_cast<int>(place), 300);
        return middle.red() > 220 && middle.blue() < 60;
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
    MarkingSession session;
    session.evaluate("const [place, end] = global.compositor?.disable_unredirect"
                     "    ? [global.compositor, '']"
                     "    : [imports.gi.Meta, '_for_display'];"
                     "global.vantrelHolds = 0;"
                     "place['disable_unredirect' + end] = () => global.vantrelHolds++;"
                     "place['enable_unredirect' + end] = () => global.vantrelHolds--; 1");
    Effect effect = effectOf(CursorMode::laser, strongly());
    effect.hideAfter = 0.3;
    session.show(effect);
    EXPECT_TRUE(session.comesToShow(0));
    EXPECT_EQ(session.evaluate("global.vantrelHolds"), 0);
    session.watchPictures();
    session.moveTo(640, 120);
    EXPECT_TRUE(waitFor([&] { return session.shownPictures() > 0; }));
    EXPECT_TRUE(session.comesToShow(0));
    const int shown = session.shownPictures();
    session.click(BTN_LEFT);
    EXPECT_TRUE(waitFor([&] { return session.shownPictures() == shown + 1; }));

    effect.hideAfter.reset();
    session.show(effect);
    EXPECT_EQ(session.evaluate("global.vantrelHolds"), 1);
    const auto comesToTheTop = [&](const char* name) {
        const std::string top = "Main.layoutManager.uiGroup.get_last_child().name";
        return waitFor([&] { return session.evaluate(top) == name; });
    };
    session.evaluate("Main.panel.statusArea.dateMenu.menu.open(); 1");
    EXPECT_TRUE(comesToTheTop("vantrel"));
    const auto isMarkedAt = [&](int x, int y) {
        session.moveTo(x, y);
        return waitFor([&] {
            const QColor middle = session.picture().pixelColor(x, y);
            return middle.red() > 248 && std::abs(middle.green() - 228) < 6;
        });
    };
    EXPECT_TRUE(isMarkedAt(640, 120)) << "on the menu";
    EXPECT_TRUE(isMarkedAt(500, 14)) << "on the top bar";
    // It gives in to who comes back each time.
    session.evaluate("const {Clutter, GLib} = imports.gi;"
                     "const group = Main.layoutManager.uiGroup;"
                     "const rival = new Clutter.Actor({name: 'rival'});"
                     "const rise = () => group.get_last_child() !== rival &&"
                     "    group.set_child_above_sibling(rival, null);"
                     "group.connect('notify::last-child', () => GLib.idle_add(0, rise));"
                     "group.add_child(rival); 1");
    EXPECT_TRUE(comesToTheTop("rival"));
}

TEST(GnomeTest, IsInAScreenCastAtThePointer) {
    if (!PipeWire::isInstalled()) {
        GTEST_SKIP() << "PipeWire, WirePlumber or GStreamer is missing";
    }
    const CoreApplication application;
    constexpr QSize size(640, 480);
    const MarkingSession session({.monitors = {"640x480"}});
    const auto effect = effectOf(CursorMode::laser, {});
    session.show(effect);
    const PipeWire pipeWire(session.environment(), session.folder());
    const ScreenCast cast(session.environment(), session.folder(), session.castScreen(), size);
    for (const QPoint place : {QPoint(200, 200), QPoint(330, 210), QPoint(250, 390)}) {
        session.moveTo(place.x(), place.y());
        Differences last;
        EXPECT_TRUE(waitFor([&] {
            const auto picture = cast.picture();
            last = picture.isNull() ? Differences{255, 255}
                                    : differences(picture, session.pointer().toPoint(), effect, 1);
            return last.areSlight();
        })) << last;
    }
}

TEST(GnomeTest, ServesOneProgramAndForgetsItWhenItIsGone) {
    const CoreApplication application;
    const MarkingSession session;
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
    const MarkingSession session;
    const std::string refusal = "org.freedesktop.DBus.Error.InvalidArgs";
    const auto refuses = [&](const QVariantMap& effect) {
        return session.errorOf(session.bus(), "Show", {effect}) == refusal;
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
    EXPECT_FALSE(refuses(disc(1024, 0, {{0, Qt::red}})));
    EXPECT_FALSE(refuses(ring([](auto&) {})));
    for (const auto& [what, effect] : std::map<std::string, QVariantMap>{
             {"too large", disc(1025, 0, {{0, Qt::red}})},
             {"no number", disc(std::nan(""), 0, {{0, Qt::red}})},
             {"negative", disc(-1, 0, {{0, Qt::red}})},
             {"line wider than the disc", disc(10, 11, {{0, Qt::red}})},
             {"without colours", disc(10, 0, {})},
             {"stops in disorder", disc(10, 0, {{0.5, Qt::red}, {0.4, Qt::red}})},
             {"stop beyond the edge", disc(10, 0, {{1.5, Qt::red}})},
             {"too many stops", disc(10, 0, std::vector(17, ColorStop{0, Qt::red}))},
             {"too many discs", messageOf({.discs = std::vector(17, Disc{10, 0, {{0, Qt::red}}})})},
             {"endless ring", ring([](auto& click) { click.duration = infinite; })},
             {"instant ring", ring([](auto& click) { click.duration = 1e-4; })},
             {"wide ring", ring([](auto& click) { click.endDiameter = 1024; })},
             {"infinite ring", ring([](auto& click) { click.endDiameter = infinite; })},
             {"rest without end", messageOf({.hideAfter = infinite})},
             {"another type", {{QStringLiteral("idle"), QStringLiteral("1")}}},
             {"unknown", {{QStringLiteral("toString"), 1.0}}},
         }) {
        EXPECT_TRUE(refuses(effect)) << what;
    }
    EXPECT_NE(session.errorOf(session.bus(), "Show", {1}), "");

    qDBusRegisterMetaType<ShellShortcut>();
    qDBusRegisterMetaType<QList<ShellShortcut>>();
    qDBusRegisterMetaType<ShellEntry>();
    qDBusRegisterMetaType<QList<ShellEntry>>();
    const auto text = [](int length) { return QString(length, QLatin1Char('1')); };
    using Shortcuts = QList<ShellShortcut>;
    for (const auto& shortcuts :
         {Shortcuts{{1, QStringLiteral("<Alt>0x26")}, {1, QStringLiteral("<Alt>0x27")}},
          Shortcuts{{1, QStringLiteral("<Alt>nonsense")}}}) {
        EXPECT_EQ(session.errorOf(session.bus(), "Grab", {QVariant::fromValue(shortcuts)}),
                  refusal);
    }
    for (const auto& [picture, description, entries] :
         std::vector<ShellItem>{{.picture = QByteArray(100, '1')},
                                {.picture = QByteArray("\x89PNG\r\n\x1a\n").append(16, '\1')},
                                {.description = text(257)},
                                {.entries = {{text(257), 0}}},
                                {.entries = {{text(1), 3}}},
                                {.entries = QList<ShellEntry>(65)}}) {
        EXPECT_EQ(session.errorOf(session.bus(), "SetItem",
                                  {picture, description, QVariant::fromValue(entries)}),
                  refusal);
    }
}

} // namespace
} // namespace vantrel::desktop
