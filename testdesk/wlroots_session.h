#pragma once

#include "testdesk/child_process.h"
#include "testdesk/compositor.h"
#include "testdesk/private_bus.h"
#include "testdesk/temporary_folder.h"

#include <QImage>
#include <QPoint>
#include <QSize>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::desktop {

// One after the other; its place is in points.
struct HeadlessOutput {
    QSize pixels{800, 600};
    double scale = 1;
    QPoint place{0, 0};
};

// A compositor as a Wayland session without a screen, with an Xwayland, over a black desktop. It
// has no pointer before that is first moved.
class WlrootsSession {
public:
    // With one output as it comes where none is named, which spares wlr-randr. Throws when it does
    // not come up.
    explicit WlrootsSession(Compositor compositor, const std::vector<HeadlessOutput>& outputs = {});
    ~WlrootsSession();
    WlrootsSession(const WlrootsSession&) = delete;
    WlrootsSession& operator=(const WlrootsSession&) = delete;

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    // For programs of the session.
    [[nodiscard]] Environment environment() const;
    // Where it listens, as an absolute path.
    [[nodiscard]] std::string socket() const;
    [[nodiscard]] const PrivateBus& sessionBus() const { return bus_; }
    // Of the Xwayland.
    [[nodiscard]] const std::string& display() const { return display_; }

    // What the numbered output shows, from 1.
    [[nodiscard]] QImage picture(int output = 1) const;
    // A picture with the pointer in it, as a recorder takes them.
    void recordWithPointer(int output = 1) const;
    // In the words of wlr-randr, as "--off".
    void setOutput(int output, std::vector<std::string> words) const;

    // In points, from the corner of the output at 0, 0.
    void moveTo(QPoint place);
    // From where it is, without waiting.
    void moveBy(QPoint way);
    void click(std::uint32_t button); // a code of Linux, as BTN_LEFT

    [[nodiscard]] pid_t pid() const { return process_.pid(); }

    // Ends it before its time.
    void stop() { process_.terminate(); }

private:
    class Mouse;

    void run(std::vector<std::string> arguments) const;
    [[nodiscard]] ChildProcess start(Compositor compositor, std::size_t outputs);

    TemporaryFolder folder_;
    PrivateBus bus_{folder() / "bus"};
    std::string display_;
    std::string socket_; // the name of it
    ChildProcess process_;
    std::unique_ptr<Mouse> mouse_;
};

} // namespace vantrel::desktop
