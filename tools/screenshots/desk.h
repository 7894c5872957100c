#pragma once

#include "demo/stage.h"
#include "testdesk/child_process.h"
#include "testdesk/private_server.h"
#include "testdesk/program_windows.h"
#include "testdesk/synthetic_input.h"
#include "testdesk/tray.h"
#include "testdesk/vantrel_program.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vantrel::screenshots {

// A private desktop with a tray, on which Vantrel is started, used and photographed. Each step
// waits for what it leads to, and throws when that does not come.
class Desk {
public:
    Desk(std::filesystem::path program, std::filesystem::path folder);

    // In place of the one that is running. Without preferences it is the first start of a user.
    void start(const nlohmann::json& preferences, const desktop::VantrelOptions& options = {});

    desktop::WindowState openPanel();
    [[nodiscard]] desktop::WindowState window(desktop::PixelSize content);
    // In a window, from its top-left corner.
    void click(const desktop::WindowState& window, desktop::PixelPoint place);
    void movePointer(desktop::PixelPoint place);
    // To where nothing reacts to it.
    void parkPointer();

    // Pictures once nothing changes any more. They are named after what they show.
    void takeWindow(const desktop::WindowState& window, const std::string& name);
    void takeStage(const desktop::PixelRect& area, const std::string& name);

private:
    void waitForRest(const desktop::PixelRect& area);
    void expectOfVantrel(const std::string& what, const std::function<bool()>& condition);

    std::filesystem::path program_;
    std::filesystem::path folder_;
    desktop::PrivateServer server_;
    desktop::ChildProcess windowManager_;
    desktop::ChildProcess compositingManager_;
    demo::Stage stage_;
    desktop::Tray tray_;
    desktop::SyntheticInput input_;
    std::optional<desktop::ChildProcess> vantrel_;
};

} // namespace vantrel::screenshots
