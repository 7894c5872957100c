#pragma once

#include "testdesk/child_process.h"
#include "testdesk/temporary_folder.h"

#include <QImage>
#include <QPoint>
#include <QSize>

#include <memory>
#include <string>
#include <vector>

namespace vantrel::desktop {

// Of sway, one after the other; its place is in points.
struct SwayOutput {
    QSize pixels{800, 600};
    double scale = 1;
    QPoint place{0, 0};
};

// sway as a Wayland session without a screen, with an Xwayland, over a black desktop. It has no
// pointer before that is first moved.
class SwaySession {
public:
    // Throws when it does not come up.
    explicit SwaySession(const std::vector<SwayOutput>& outputs = {{}});
    ~SwaySession();
    SwaySession(const SwaySession&) = delete;
    SwaySession& operator=(const SwaySession&) = delete;

    // Whether this sway tells programs where the pointer is.
    [[nodiscard]] static bool followsPointers();

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    // For programs of the session.
    [[nodiscard]] Environment environment() const;
    // Where it listens, as an absolute path.
    [[nodiscard]] std::string socket() const;
    // Of the Xwayland.
    [[nodiscard]] const std::string& display() const { return display_; }

    // What the numbered output shows, from 1.
    [[nodiscard]] QImage picture(int output = 1) const;
    // A picture with the pointer in it, as a recorder takes them.
    void recordWithPointer(int output = 1) const;
    // In the words of its configuration.
    void command(const std::string& words) const;

    // In points, from the corner of the output at 0, 0.
    void moveTo(QPoint place);
    void click(std::uint32_t button); // a code of Linux, as BTN_LEFT

    // Ends it before its time.
    void stop() { compositor_.terminate(); }

private:
    class Mouse;

    void run(std::vector<std::string> arguments) const;
    [[nodiscard]] ChildProcess start(const std::vector<SwayOutput>& outputs);

    TemporaryFolder folder_;
    std::string display_;
    std::string socket_; // the name of it
    std::string control_;
    ChildProcess compositor_;
    std::unique_ptr<Mouse> mouse_;
};

} // namespace vantrel::desktop
