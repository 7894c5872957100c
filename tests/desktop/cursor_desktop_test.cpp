#include "overlay/drawn_cursor.h"
#include "platform/x11/cursor_images.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/private_server.h"
#include "testdesk/synthetic_input.h"
#include "testdesk/temporary_folder.h"
#include "testdesk/wait.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include <xcb/xfixes.h>

namespace vantrel::desktop {
namespace {

// A server whose root window shows the arrow of a theme, as programs choose it.
class CursorDesktopTest : public testing::Test {
protected:
    // The folder that is searched for themes is asked for once in a process.
    static void SetUpTestSuite() {
        static const TemporaryFolder folder;
        themes = folder.path() / "icons";
        qputenv("XCURSOR_PATH", themes.c_str());
        qunsetenv("XCURSOR_THEME");
        qunsetenv("XCURSOR_SIZE");
    }
    void SetUp() override {
        std::filesystem::create_directory_symlink("/usr/share/icons", themes);
        x11::ConnectionError error;
        connection = x11::Connection::open(server.display(), error);
        ASSERT_TRUE(connection) << error.english;
        cursors.emplace(connection.get(), drawn);
    }
    void TearDown() override { std::filesystem::remove(themes); }

    void setBytes(const std::string& property, const std::string& bytes) {
        xcb_change_property(client.get(), XCB_PROP_MODE_REPLACE, client.root(),
                            client.atom(property), XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
        client.sync();
    }
    void setResources(const std::string& resources) { setBytes("RESOURCE_MANAGER", resources); }
    // As the settings program of a desktop does.
    void setSetting(const std::string& block) {
        setBytes("_XSETTINGS_SETTINGS", block);
        xcb_set_selection_owner(client.get(), client.root(), client.atom("_XSETTINGS_S0"),
                                XCB_CURRENT_TIME);
        client.sync();
    }
    // A picture with its hot spot, in pixels.
    struct Shown {
        QPointF hotSpot;
        QImage image;

        bool operator==(const Shown&) const = default;
    };
    // What the server shows; nothing when that was made by a program that has ended.
    std::optional<Shown> onScreen() {
        const auto reply = ownReply(xcb_xfixes_get_cursor_image_reply(
            client.get(), xcb_xfixes_get_cursor_image_unchecked(client.get()), nullptr));
        if (!reply) {
            return std::nullopt;
        }
        const auto* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
        const QImage image(reinterpret_cast<const uchar*>(pixels), reply->width, reply->height,
                           QImage::Format_ARGB32_Premultiplied);
        return Shown{QPointF(reply->xhot, reply->yhot), image.copy()};
    }
    // A program that puts an arrow on the root window shows this one.
    void expectSameAsOnScreen(CursorImage cursor, double scale) {
        EXPECT_EQ(cursor.image.devicePixelRatio(), scale);
        cursor.image.setDevicePixelRatio(1);
        const Shown expected{cursor.hotSpot * scale, cursor.image};
        const auto windowManager = startWindowManager(server);
        EXPECT_TRUE(waitFor([&] { return onScreen() == expected; }));
    }

    inline static std::filesystem::path themes;
    PrivateServer server = PrivateServer::virtualScreen();
    XConnection client{server.display()};
    DrawnCursor drawn;
    std::unique_ptr<x11::Connection> connection;
    std::optional<x11::X11CursorImages> cursors;
};

TEST_F(CursorDesktopTest, IsThePictureThatTheServerShows) {
    const auto version = ownReply(xcb_xfixes_query_version_reply(
        client.get(), xcb_xfixes_query_version(client.get(), 5, 0), nullptr));
    ASSERT_TRUE(version);
    SyntheticInput(server.display()).moveTo({500, 500});
    expectSameAsOnScreen(cursors->arrow(1), 1);
    const auto plain = cursors->arrow(1);
    for (const std::string theme : {"DMZ-White", "DMZ-Black"}) {
        setResources("Xcursor.theme:\t" + theme + "\nXcursor.size:\t48\n");
        expectSameAsOnScreen(cursors->arrow(2), 2);
        EXPECT_NE(cursors->arrow(2), plain);
    }
}

TEST_F(CursorDesktopTest, IsThatOfTheDesktopsSettings) {
    setResources("Xcursor.theme:\tDMZ-White\nXcursor.size:\t24\n");
    const auto white = cursors->arrow(1);
    setSetting(std::string("\0\0\0\0\0\0\0\1\1\0\0\0\1\0\23\0Gtk/CursorThemeName\0"
                           "\0\0\0\0\11\0\0\0DMZ-Black\0\0\0",
                           56));
    const auto black = cursors->arrow(1);
    EXPECT_NE(black, white);
    setSetting({});
    setResources("Xcursor.theme:\tDMZ-Black\nXcursor.size:\t24\n");
    EXPECT_EQ(cursors->arrow(1), black);
}

TEST_F(CursorDesktopTest, IsDrawnWhereThereIsNoTheme) {
    std::filesystem::remove(themes);
    EXPECT_EQ(cursors->arrow(2), drawn.arrow(2));
}

} // namespace
} // namespace vantrel::desktop
