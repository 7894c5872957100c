#include "overlay/effect.h"
#include "overlay/overlay_window_manager.h"
#include "platform/system_clock.h"
#include "support/event_loop.h"
#include "support/mark_pixels.h"
#include "support/under_test.h"
#include "testdesk/client_window.h"
#include "testdesk/core_application.h"
#include "testdesk/headless/wayland_with_memory.h"
#include "testdesk/native_window.h"
#include "testdesk/program_of.h"
#include "testdesk/status_notifier_host.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"
#include "testdesk/wlroots_session.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// Debian 12 and 13 have none that tells programs where the pointer is.
#define SKIP_WITHOUT_CURSOR_SESSIONS(compositor)                                                   \
    if (!followsPointers(compositor)) {                                                            \
        GTEST_SKIP() << "none that has cursor sessions";                                           \
    }

// The overlays of this process in a session.
class Overlays {
public:
    explicit Overlays(const WlrootsSession& session)
        : connection_(wayland::Connection::open(session.socket(), 5s)),
          wayland_(*connection_, clock_),
          manager_(desktopOn(wayland_, clock_, rest_.mainQueue, rest_)) {}

    void show(CursorMode mode, const AppPreferences& preferences) {
        manager_.apply(mode, preferences);
    }
    [[nodiscard]] std::optional<GlobalPoint> pointer() { return wayland_.pointer.location(); }
    // In place of the one that the overlays have.
    [[nodiscard]] std::unique_ptr<DisplayLink> link(float rate, std::function<void()> target) {
        return wayland_.displayLinks.create(wayland_.screens.list().front(), {rate, rate, rate},
                                            std::move(target));
    }

private:
    SystemClock clock_;
    headless::Desktop rest_;
    std::unique_ptr<wayland::Connection> connection_;
    wayland::WaylandDesktop wayland_;
    OverlayWindowManager manager_;
};

// Waits until the output shows the effect around that pixel.
testing::AssertionResult shows(const WlrootsSession& session, const Effect& effect, QPoint pixel,
                               double scale = 1, int output = 1) {
    Differences last;
    const bool shown = runUntil([&] {
        last = differences(session.picture(output), pixel, effect, scale);
        return last.areSlight();
    });
    return shown ? testing::AssertionSuccess() : testing::AssertionFailure() << last;
}

bool isBlack(const QImage& picture) {
    QImage black(picture.size(), picture.format());
    black.fill(Qt::black);
    return picture == black;
}

class WlrootsLookTest : public testing::TestWithParam<std::tuple<Compositor, double>> {};

TEST_P(WlrootsLookTest, ShowsEachEffectOnTheDisplaysPixels) {
    const auto [compositor, scale] = GetParam();
    SKIP_WITHOUT_CURSOR_SESSIONS(compositor);
    const CoreApplication application;
    WlrootsSession session(compositor, {{.pixels = {1200, 900}, .scale = scale}});
    Overlays overlays(session);
    // At an odd point no pixel of a display at one and a half begins.
    for (const QPoint place : {QPoint(200, 100), QPoint(301, 203)}) {
        session.moveTo(place);
        const QPoint pixel((QPointF(place) * scale).toPoint());
        for (const auto& look : everyLook()) {
            overlays.show(look.mode, look.preferences);
            EXPECT_TRUE(shows(session, look.effect(), pixel, scale)) << look.name;
        }
    }
    overlays.show(CursorMode::off, {});
    EXPECT_TRUE(runUntil([&] { return isBlack(session.picture()); }));
}

constexpr auto compositors = {Compositor::sway, Compositor::labwc};

INSTANTIATE_TEST_SUITE_P(In, WlrootsLookTest,
                         testing::Combine(testing::ValuesIn(compositors),
                                          testing::Values(1, 1.5, 2)),
                         [](const auto& test) {
                             return nameOf(std::get<0>(test.param)) +
                                    std::to_string(std::lround(100 * std::get<1>(test.param)));
                         });

class WlrootsTest : public testing::TestWithParam<Compositor> {
protected:
    void SetUp() override { SKIP_WITHOUT_CURSOR_SESSIONS(GetParam()); }
    // A session with the highlight.
    void highlight(const std::vector<HeadlessOutput>& outputs = {}) {
        session.emplace(GetParam(), outputs);
        overlays.emplace(*session);
        overlays->show(CursorMode::highlight, strongly());
    }
    // With its middle on a pixel.
    testing::AssertionResult shows(QPoint pixel, double scale = 1, int output = 1) const {
        return desktop::shows(*session, effectOf(CursorMode::highlight, strongly()), pixel, scale,
                              output);
    }

    const CoreApplication application;
    std::optional<WlrootsSession> session;
    std::optional<Overlays> overlays;
};

INSTANTIATE_TEST_SUITE_P(In, WlrootsTest, testing::ValuesIn(compositors),
                         [](const auto& test) { return nameOf(test.param); });

TEST_P(WlrootsTest, CutsTheMarkAtTheBorderOfTwoDisplaysAndFollowsTheirComingAndGoing) {
    highlight({{.pixels = {1200, 600}, .scale = 1.5}, {.pixels = {800, 600}, .place = {800, 0}}});
    // What a display shows of a mark on another one is a part of the same disc.
    session->moveTo({790, 200});
    EXPECT_TRUE(shows({1185, 300}, 1.5, 1));
    EXPECT_TRUE(shows({-10, 200}, 1, 2));
    session->moveTo({810, 200});
    EXPECT_TRUE(shows({1215, 300}, 1.5, 1));
    EXPECT_TRUE(shows({10, 200}, 1, 2));

    session->setOutput(2, {"--off"});
    session->moveTo({400, 200});
    EXPECT_TRUE(shows({600, 300}, 1.5, 1));
    // None is left, and one comes back as another.
    session->setOutput(1, {"--off"});
    session->setOutput(1, {"--on", "--scale", "1", "--transform", "90"});
    session->moveTo({410, 200});
    EXPECT_TRUE(shows({410, 200}));
}

// The compositor then paints the pointer into the picture itself, and tells nobody where.
TEST_P(WlrootsTest, HidesWhileThePointerIsRecordedAndComesBack) {
    highlight();
    session->moveTo({400, 300});
    EXPECT_TRUE(shows({400, 300}));
    session->recordWithPointer();
    EXPECT_TRUE(runUntil([&] { return !overlays->pointer(); }));
    EXPECT_TRUE(runUntil([&] { return session->picture().pixel(380, 300) == 0xFF000000; }));
    // With the next look of the pointer, as the recorder may go on before.
    const ClientWindow window(session->display(),
                              {.area = {300, 200, 200, 200}, .color = 0xFF000000});
    session->moveTo({401, 300});
    session->moveTo({400, 300});
    EXPECT_TRUE(shows({400, 300}));
}

TEST_P(WlrootsTest, PacesByTheFramesThatShowSomethingNewAndByTheClockWithout) {
    highlight();
    session->moveTo({300, 300});
    EXPECT_TRUE(shows({300, 300}));
    int calls = 0;
    auto link = overlays->link(0.001F, [&] { ++calls; });
    session->moveTo({400, 300});
    EXPECT_TRUE(shows({400, 300}));
    EXPECT_TRUE(runUntil([&] { return calls > 0; }));
    // One may still come.
    const int most = calls + 1;
    int pictures = 0;
    EXPECT_TRUE(runUntil([&] { return !session->picture().isNull() && ++pictures == 5; }));
    EXPECT_LE(calls, most);

    link.reset();
    link = overlays->link(20, [&] { ++calls; });
    session->moveTo({410, 300});
    EXPECT_TRUE(runUntil([&] { return calls > most + 10; }));
}

// The program in a session.
class ProgramInSession : public ProgramOf<WlrootsSession> {
public:
    explicit ProgramInSession(const WlrootsSession& session)
        : ProgramOf(session, programUnderTest()) {
        writePreferences(session.folder() / "config", preferencesShowing("highlight"));
        program_.emplace(start());
    }

    [[nodiscard]] std::optional<ExitStatus> wait() { return program_->wait(10s); }

private:
    std::optional<ChildProcess> program_;
};

TEST_P(WlrootsTest, TheProgramMarksThePointerAboveAFullScreenWindowThatGetsItsClicks) {
    session.emplace(GetParam());
    session->moveTo({100, 100});
    ProgramInSession program(*session);
    ASSERT_TRUE(program.takesCommands());
    const auto status = program.status();
    EXPECT_EQ(status.at("marks"), "layer-shell");
    EXPECT_EQ(status.at("marksMissing"), nullptr);
    EXPECT_EQ(status.at("pointer"), "cursor-session");
    EXPECT_EQ(status.at("presses"), nullptr);
    EXPECT_EQ(status.at("shortcuts"), nullptr);
    EXPECT_EQ(status.at("clickAvailable"), false);

    // A white one.
    const auto blueAt = [&](QPoint place) { return qBlue(session->picture().pixel(place)); };
    const NativeWindow below(session->environment(), session->folder(), [&] {
        return blueAt({1270, 710}) > 200;
    });
    session->moveTo({400, 300});
    const auto isMarked = [&] { return blueAt({385, 300}) < 200 && blueAt({1270, 710}) > 200; };
    EXPECT_TRUE(waitFor(isMarked));
    // labwc looks what lies below the pointer when that moves.
    session->moveTo({401, 300});
    session->click(BTN_LEFT);
    EXPECT_TRUE(waitFor([&] { return below.count("press") == 1 && below.count("release") == 1; }));

    EXPECT_TRUE(program.takes("off"));
    EXPECT_TRUE(waitFor([&] { return blueAt({385, 300}) > 200; }));
    EXPECT_TRUE(program.takes("highlight"));
    EXPECT_TRUE(waitFor(isMarked));
    session->stop();
    EXPECT_EQ(program.wait(), (ExitStatus{.code = 0})) << program.errors();
}

TEST(WlrootsProgramTest, TheProgramDoesWithXwaylandWhereNobodyTellsOfThePointer) {
    if (followsPointers(Compositor::sway)) {
        GTEST_SKIP() << "this sway has cursor sessions";
    }
    WlrootsSession session(Compositor::sway);
    const ProgramInSession program(session);
    ASSERT_TRUE(program.takesCommands());
    const auto status = program.status();
    for (const auto* means : {"marks", "pointer", "presses", "shortcuts"}) {
        EXPECT_EQ(status.at(means), "xwayland") << means;
    }
    EXPECT_EQ(status.at("marksMissing"), "desktop");
    // The mark does not outlive what the X server knew of the pointer.
    const auto isMarked = [&] {
        const auto picture = session.picture();
        return picture.pixel(380, 300) != picture.pixel(10, 10);
    };
    {
        const ClientWindow known(session.display(), {.overrideRedirect = false});
        EXPECT_TRUE(waitFor([&] {
            session.moveTo({401, 300});
            session.moveTo({400, 300});
            return isMarked();
        }));
    }
    EXPECT_TRUE(waitFor([&] { return !isMarked(); }));
    EXPECT_NE(program.errors().find("In this Wayland session"), std::string::npos);
}

// What differs from that colour.
QRect shownOn(const QImage& picture, QRgb color) {
    QRect shown;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, y) != color) {
                shown |= QRect(x, y, 1, 1);
            }
        }
    }
    return shown;
}

TEST(WlrootsProgramTest, ThePanelHangsAtItsItemAsLongAsItIsUsed) {
    if (!exists(programUnderTest().parent_path() / "../libexec/vantrel/layershell.so")) {
        GTEST_SKIP() << "built without LayerShellQt";
    }
    const CoreApplication application;
    WlrootsSession session(Compositor::sway);
    const StatusNotifierHost host(session.sessionBus());
    const ProgramInSession program(session);
    const auto item = host.waitForItem();
    ASSERT_TRUE(item);
    EXPECT_TRUE(program.takes("off"));
    constexpr QRgb blue = 0xFF204080;
    const ClientWindow window(session.display(), {.color = blue, .overrideRedirect = false});
    QRect panel;
    const auto isShown = [&](auto isRight) {
        return waitFor([&] {
            panel = shownOn(session.picture(), blue);
            return isRight();
        });
    };
    ASSERT_TRUE(isShown([&] { return panel.isEmpty(); }));
    // The item's place is not known before it was clicked.
    item->choose("Show Panel");
    EXPECT_TRUE(isShown([&] {
        return panel.width() > 300 && (panel.center() - QPoint(640, 360)).manhattanLength() < 3;
    }));
    item->activate({1200, 8});
    EXPECT_TRUE(isShown([&] { return panel.isEmpty(); }));
    item->activate({1200, 8});
    EXPECT_TRUE(isShown([&] { return panel.top() == 4 && panel.right() == 1279; }));
    // Nobody has a keyboard there, so the pointer decides.
    session.moveTo({1200, 300});
    EXPECT_FALSE(waitFor([&] { return shownOn(session.picture(), blue).width() < 100; }, 4s));
    session.moveTo({100, 300});
    EXPECT_TRUE(isShown([&] { return panel.width() < 100; }));
    item->activate({10, 710});
    EXPECT_TRUE(isShown([&] { return panel.left() == 0 && panel.bottom() == 715; }));
}

} // namespace
} // namespace vantrel::desktop
