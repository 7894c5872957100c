#pragma once

#include "platform/time.h"
#include "platform/x11/raise_policy.h"
#include "platform/x11/sprite_window.h"

#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace vantrel::x11 {

// The sprite windows of all overlays, bottom to top as far as this program's go. Those that are not
// in use wait, parked, for the next sprite. They stay above the windows of others.
class SpriteStack final : private EventHandler {
public:
    SpriteStack(Connection& connection, const Clock& clock);

    // Makes them blend, or not, from now on. Takes away all windows that there are.
    void setKind(SpriteKind kind);
    // None before.
    [[nodiscard]] std::optional<SpriteKind> kind() const {
        return resources_ ? std::optional(resources_->kind()) : std::nullopt;
    }
    // Has so many windows waiting, so that none need be made when a sprite appears. Waits for
    // nothing: what the server answers is looked at when a window is first needed.
    void prepare(std::size_t count);
    // On top of the others, and not of anything else. Null when there can be none.
    SpriteWindow* acquire();
    void release(SpriteWindow& window);
    // Above everything, where something may lie above.
    void raise();
    // Nothing is mapped while hidden, as at first, but what is ready stays ready. Afterwards only
    // what is acquired is mapped, by its commit(): each window costs a compositing manager time,
    // and the first picture waits for it.
    void setShown(bool shown);
    // Maps all that wait.
    void mapAll();

private:
    struct Entry {
        std::unique_ptr<SpriteWindow> window;
        bool used = false;
    };

    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void cameAbove(xcb_window_t window);
    // Whether a window of another program lies above.
    bool noteOrder(xcb_window_t window, bool above);
    void removeThoseThatTakeClicks();
    [[nodiscard]] bool isOurs(xcb_window_t window) const;

    Connection& connection_;
    const Clock& clock_;
    RaisePolicy policy_;
    // The windows of others that lie above, as far as known: those that are left there, and unseen
    // ones, which do not matter themselves. What is put right above one of these is above as well.
    std::set<xcb_window_t> above_;
    bool covered_ = false;
    bool shown_ = false;
    std::optional<SpriteResources> resources_; // from the first setKind() on
    std::vector<Entry> entries_;
    Subscription events_;
};

} // namespace vantrel::x11
