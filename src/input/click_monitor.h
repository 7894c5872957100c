#pragma once

#include "platform/input.h"

#include <functional>
#include <memory>
#include <optional>

namespace vantrel {

// Reports every press of the left and of the right mouse button, in the windows of this application
// as in those of any other. It does not ask whether the user wants an effect for it.
class ClickMonitor {
public:
    using Token = EventMonitors::Token;

    // How monitors are installed and removed; no token means that the desktop refused.
    struct Operations {
        std::function<std::optional<Token>(EventMask, EventMonitors::GlobalHandler)> installGlobal;
        std::function<std::optional<Token>(EventMask, EventMonitors::LocalHandler)> installLocal;
        std::function<void(Token)> remove;
    };
    // Those of a desktop, which must outlive the monitor.
    [[nodiscard]] static Operations operationsOf(EventMonitors& monitors);

    explicit ClickMonitor(Operations operations);
    ~ClickMonitor();
    ClickMonitor(const ClickMonitor&) = delete;
    ClickMonitor& operator=(const ClickMonitor&) = delete;

    // Receives each press and its point on the desktop.
    std::function<void(MouseButton button, GlobalPoint point)> onClick;

    // True when the presses of both kinds of windows are seen now; otherwise those of neither are.
    bool start();
    void stop();

private:
    void installMonitors();
    void removeMonitor(std::optional<Token>& monitor);
    void handle(const Event& event) const;

    Operations operations_;
    // What the installed handlers know of this object; empty once it is gone.
    std::shared_ptr<ClickMonitor*> self_;
    std::optional<Token> globalMonitor_;
    std::optional<Token> localMonitor_;
};

} // namespace vantrel
