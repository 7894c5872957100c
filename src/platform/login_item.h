#pragma once

#include <cstdint>

namespace vantrel {

enum class LoginItemStatus : std::uint8_t {
    notRegistered = 0,
    enabled = 1,
    requiresApproval = 2, // registered, and switched off in a way that only the user may undo
    notFound = 3,
};

// Whether the session starts this application at login.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    [[nodiscard]] virtual LoginItemStatus status() const = 0;
    // False when the change was refused.
    virtual bool register_() = 0;
    virtual bool unregister() = 0;
};

} // namespace vantrel
