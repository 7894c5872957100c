#pragma once

#include "hand.h"
#include "session.h"
#include "stage.h"
#include "testdesk/child_process.h"
#include "testdesk/private_server.h"
#include "testdesk/screen_capture.h"
#include "testdesk/vantrel_program.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::demo {

// A private session with Vantrel in it, and a hand at its mouse and keyboard. Every step waits
// until its effect is on the screen, and throws when it does not appear.
class Show {
public:
    Show(SessionKind kind, std::filesystem::path program, std::filesystem::path folder);

    [[nodiscard]] const desktop::PrivateServer& server() const { return server_; }
    [[nodiscard]] const Session& session() const { return *session_; }
    [[nodiscard]] Stage& stage() { return stage_; }
    [[nodiscard]] Hand& hand() { return hand_; }

    // Starts Vantrel with these preferences, in place of the one that is running.
    void startVantrel(const nlohmann::json& preferences);
    // Types the shortcut of "highlight" or "laser", or gives the command where the session has no
    // shortcuts, after which an effect is there, or none.
    void toggle(const std::string& mode, bool shown);
    // One that shows its ring and reaches the window beneath. The picture has the ring half-way;
    // where the session tells of no clicks there is neither.
    void click(const std::string& still, desktop::Button button = desktop::Button::left);
    void waitForEffect(bool shown);
    // A picture named after what it shows.
    void takeStill(const std::string& name);

private:
    [[nodiscard]] desktop::Picture aroundPointer() const;
    [[nodiscard]] desktop::ChildProcess command(std::vector<std::string> words,
                                                const std::filesystem::path& output = {}) const;
    void checkMeans();
    [[nodiscard]] bool effectIsShown() const;
    [[nodiscard]] bool ringIsShown(const desktop::Picture& before) const;
    void expectOfVantrel(const std::string& what, const std::function<bool()>& condition);

    std::filesystem::path program_;
    std::filesystem::path folder_;
    desktop::PrivateServer server_;
    std::unique_ptr<Session> session_;
    Stage stage_;
    Hand hand_;
    std::optional<desktop::ChildProcess> vantrel_;
};

} // namespace vantrel::demo
