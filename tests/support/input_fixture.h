#pragma once

#include "platform/x11/desktop.h"
#include "support/event_loop.h"
#include "testdesk/client_window.h"
#include "testdesk/core_application.h"
#include "testdesk/private_server.h"
#include "testdesk/synthetic_input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace vantrel::desktop {

// The input of this process on a private server, and another program whose window has the focus.
class InputDesktopTest : public testing::Test {
protected:
    void SetUp() override {
        xcb_set_input_focus(other.connection().get(), XCB_INPUT_FOCUS_NONE, other.id(),
                            XCB_CURRENT_TIME);
        other.connection().sync();
        x11::ConnectionError error;
        connection = x11::Connection::open(server.display(), error);
        ASSERT_TRUE(connection) << error.english;
        x11 = std::make_unique<x11::X11Desktop>(*connection);
    }
    void TearDown() override {
        x11.reset();
        connection.reset();
    }

    // Until all that the server has to say by now was heard and acted on.
    void settle() const {
        QCoreApplication::processEvents();
        auto* xcb = connection->xcb();
        std::free(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
        connection->dispatch();
    }
    void runProgram(const std::vector<std::string>& command) const {
        ChildProcess process({.arguments = command, .environment = server.environment()});
        ASSERT_EQ(process.wait(std::chrono::seconds(10)), ExitStatus{.code = 0});
        settle();
    }
    [[nodiscard]] bool otherReceived(InputEvent::Type type, std::uint8_t detail) {
        return std::ranges::any_of(other.events(), [&](const InputEvent& event) {
            return event.type == type && event.detail == detail;
        });
    }

    PrivateServer server = PrivateServer::virtualScreen({1000, 600});
    SyntheticInput input{server.display()};
    ClientWindow other{server.display(), {.area = {0, 0, 1000, 600}}};
    std::unique_ptr<x11::Connection> connection;
    std::unique_ptr<x11::X11Desktop> x11;

private:
    CoreApplication application_;
};

} // namespace vantrel::desktop
