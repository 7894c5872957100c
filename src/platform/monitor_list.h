#pragma once

#include "platform/input.h"

#include <list>

namespace vantrel {

// The global monitors of a desktop. A handler may add and remove some while they are told: one that
// was added hears of the next event, one that was removed of none.
class MonitorList {
public:
    using Token = EventMonitors::Token;

    // Hears of no event with a number before that one; numbers may begin anew at 0.
    Token add(EventMask mask, EventMonitors::GlobalHandler handler, std::uint32_t number = 0);
    // Of a monitor that has nothing to hear.
    Token addDeaf() { return ++lastToken_; }
    void remove(Token token);
    // All that somebody wants to hear of.
    [[nodiscard]] EventMask mask() const;
    void send(const Event& event, std::uint32_t number = 0);

private:
    struct Monitor {
        Token token = 0;
        EventMask mask = 0; // 0 once it was removed
        std::uint32_t number = 0;
        bool hears = false; // since an event of that number
        EventMonitors::GlobalHandler handler;
    };

    void eraseRemoved();

    Token lastToken_ = 0;
    std::list<Monitor> monitors_; // a list, so that a handler may add one while it is walked along
    bool sending_ = false;
};

} // namespace vantrel
