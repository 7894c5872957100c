#include "support/program_fixture.h"
#include "testdesk/wayland_session.h"

#include <algorithm>
#include <initializer_list>
#include <optional>

namespace vantrel::desktop {
namespace {

// The program in a Wayland session. To the left lies the window of an X program, to the right
// nothing that Xwayland knows of.
class WaylandTest : public ProgramTest {
protected:
    void SetUp() override {
        // A window is below the pointer once the compositor has shown it and the pointer moves.
        ASSERT_TRUE(waitFor([&] {
            input.moveTo({inside.x - 1, inside.y});
            input.moveTo(inside);
            return other.connection().pointer() == inside;
        }));
        auto preferences = preferencesShowing("highlight");
        preferences["highlight"]["opacity"] = 0.9;
        program.emplace(start({.preferences = preferences, .display = session.display()}));
        ASSERT_TRUE(marked(inside));
    }

    [[nodiscard]] bool isYellow(PixelPoint place) const {
        constexpr std::uint32_t yellow = 0xFACC15;
        return channelDistance(pixelAt(watcher, place), yellow) < 40;
    }
    // Waits until a disc of 64 pixels lies around the place.
    [[nodiscard]] bool marked(PixelPoint place) const {
        return waitFor([&] {
            return isYellow({place.x - 29, place.y}) && isYellow({place.x + 29, place.y});
        });
    }
    // Waits until there is no colour at these places.
    [[nodiscard]] bool unmarked(std::initializer_list<PixelPoint> places) const {
        return waitFor([&] {
            return std::ranges::none_of(places, [this](auto place) { return isYellow(place); });
        });
    }

    static constexpr PixelPoint inside{350, 300};

    WaylandSession session{server};
    ClientWindow other{session.display(),
                       {.area = {0, 0, 400, 600}, .color = 0xFF204080, .overrideRedirect = false}};
    std::optional<ChildProcess> program;
};

TEST_F(WaylandTest, MarksThePointerWhereXwaylandKnowsIt) {
    EXPECT_NE(errors().find("In this Wayland session"), std::string::npos);
    constexpr PixelPoint outside{600, 300};
    for (const PixelPoint place : {PixelPoint{100, 200}, PixelPoint{300, 500}}) {
        input.moveTo(place);
        EXPECT_TRUE(marked(place));
        input.moveTo(outside);
        EXPECT_TRUE(unmarked({place, outside}));
    }
}

TEST_F(WaylandTest, MarksNothingWhileNoXProgramHasTheKeyboard) {
    const auto& xwayland = other.connection();
    const auto tellThatFocusIsOn = [&](xcb_window_t window) {
        xcb_change_property(xwayland.get(), XCB_PROP_MODE_REPLACE, xwayland.root(),
                            xwayland.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32, 1, &window);
        xwayland.sync();
    };
    tellThatFocusIsOn(XCB_NONE);
    EXPECT_TRUE(unmarked({inside}));
    tellThatFocusIsOn(other.id());
    EXPECT_TRUE(marked(inside));
}

// This compositor takes a mark for a window that is below the pointer: one that went along would
// take the clicks of everything else. And it is silent about a step as long as the one before it,
// when a window went along.
TEST_F(WaylandTest, CarriesNoMarkOutOfTheWindowsThatXwaylandKnows) {
    for (const int x : {360, 372, 381, 395}) {
        input.moveTo({x, 300});
        ASSERT_TRUE(marked({x, 300})) << x;
    }
    for (const int x : {405, 417, 426, 440}) {
        input.moveTo({x, 300});
        EXPECT_TRUE(unmarked({{395, 300}, {x, 300}})) << x;
    }
}

} // namespace
} // namespace vantrel::desktop
