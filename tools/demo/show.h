#pragma once

#include "hand.h"
#include "stage.h"
#include "testdesk/child_process.h"
#include "testdesk/private_server.h"
#include "testdesk/screen_capture.h"
#include "testdesk/vantrel_program.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace vantrel::demo {

// A private desktop with Vantrel on it, and a hand at its mouse and keyboard. Every step waits
// until its effect is on the screen, and throws when it does not appear.
class Show {
public:
    Show(std::filesystem::path program, std::filesystem::path folder);

    [[nodiscard]] const desktop::PrivateServer& server() const { return server_; }
    [[nodiscard]] Stage& stage() { return stage_; }
    [[nodiscard]] Hand& hand() { return hand_; }

    // Starts Vantrel with these preferences, in place of the one that is running.
    void startVantrel(const nlohmann::json& preferences);
    // Types Control+Alt and the key, after which an effect is there, or none.
    void toggle(char key, bool shown);
    // One that shows its ring and reaches the window beneath. The picture has the ring half-way.
    void click(const std::string& still, desktop::Button button = desktop::Button::left);
    void waitForEffect(bool shown);
    // A picture named after what it shows.
    void takeStill(const std::string& name);

private:
    [[nodiscard]] desktop::Picture aroundPointer() const;
    [[nodiscard]] bool effectIsShown() const;
    [[nodiscard]] bool ringIsShown(const desktop::Picture& before) const;
    void expectOfVantrel(const std::string& what, const std::function<bool()>& condition);

    std::filesystem::path program_;
    std::filesystem::path folder_;
    desktop::PrivateServer server_;
    desktop::ChildProcess windowManager_;
    desktop::ChildProcess compositingManager_;
    Stage stage_;
    Hand hand_;
    std::optional<desktop::ChildProcess> vantrel_;
};

} // namespace vantrel::demo
