#pragma once

#include "support/under_test.h"
#include "testdesk/client_window.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/screen_capture.h"
#include "testdesk/synthetic_input.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <X11/keysym.h>

namespace vantrel::desktop {

// Whether a disc lies over a background there. Where nothing blends, it leaves rows out.
inline bool isMarked(const XConnection& watcher, PixelPoint place, std::uint32_t background) {
    for (int row = -2; row <= 2; ++row) {
        if (pixelAt(watcher, {place.x, place.y + row}) != background) {
            return true;
        }
    }
    return false;
}

// The program under test on a private server.
class ProgramTest : public testing::Test {
protected:
    explicit ProgramTest(PrivateServer privateServer = PrivateServer::virtualScreen({800, 600}))
        : server(std::move(privateServer)) {}

    ChildProcess start(const VantrelOptions& options = {}) {
        return startVantrel(server, programUnderTest(), options);
    }
    // With whatever is stored.
    ChildProcess startAgain() { return start({.preferences = nullptr}); }
    // Without what the toolkit says when it is the first to notice that the server is gone.
    [[nodiscard]] std::string errors() const {
        const auto errors = readFile(server.folder() / "vantrel.err");
        return errors.starts_with("The X11 connection broke") ? "" : errors;
    }

    // The two shortcuts of a fresh installation.
    void typeShortcut(char letter) {
        input.typeChord({XK_Control_L, XK_Alt_L, static_cast<std::uint32_t>(letter)});
    }
    [[nodiscard]] std::filesystem::path configFolder() const {
        return server.folder() / "config" / "vantrel";
    }
    [[nodiscard]] std::filesystem::path document() const {
        return configFolder() / "Vantrel.preferences.v1";
    }
    // An empty object where there is nothing that can be read.
    [[nodiscard]] nlohmann::json stored() const {
        auto stored = nlohmann::json::parse(readFile(document()), nullptr, false);
        return stored.is_object() ? stored : nlohmann::json::object();
    }
    [[nodiscard]] std::string storedMode() const { return stored().value("lastMode", ""); }
    [[nodiscard]] bool stores(std::string_view mode) const {
        return waitFor([&] { return storedMode() == mode; });
    }

    PrivateServer server;
    XConnection watcher{server.display()};
    SyntheticInput input{server.display()};
};

// The same over a compositing manager and the black window of another program that has the focus.
class ProgramInUseTest : public ProgramTest {
protected:
    ProgramInUseTest() {
        xcb_set_input_focus(other.connection().get(), XCB_INPUT_FOCUS_NONE, other.id(),
                            XCB_CURRENT_TIME);
        other.connection().sync();
        input.moveTo(place);
    }

    // Waits until the pointer is marked as in that mode.
    [[nodiscard]] bool shows(std::string_view mode) const {
        return waitFor([&] { return shownMode() == mode; });
    }

    static constexpr PixelPoint place{300, 300};

    ClientWindow other{server.display(), {.area = {0, 0, 800, 600}, .color = 0xFF000000}};
    ChildProcess compositing = startCompositingManager(server);

private:
    // Empty while something else shows.
    [[nodiscard]] std::string_view shownMode() const {
        constexpr std::uint32_t paleYellow = 0x584707; // 35 % over black
        const std::uint32_t pixel = pixelAt(watcher, place);
        if (pixel == 0) {
            return "off";
        }
        // The dot is red with a white core.
        return pixel >> 16 == 0xFF                       ? "laser"
               : channelDistance(pixel, paleYellow) <= 3 ? "highlight"
                                                         : "";
    }
};

} // namespace vantrel::desktop
