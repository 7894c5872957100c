#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace vantrel {

// Modifier keys of a combination, as bits. The values are those of stored shortcuts.
namespace modifier {
inline constexpr std::uint32_t command = 0x100;
inline constexpr std::uint32_t shift = 0x200;
inline constexpr std::uint32_t option = 0x800;
inline constexpr std::uint32_t control = 0x1000;
} // namespace modifier

// The identity that a registration carries and a press reports.
struct HotKeyId {
    std::uint32_t signature = 0;
    std::uint32_t id = 0;

    bool operator==(const HotKeyId&) const = default;
};

// Key combinations that are seen in every application and consumed. Keys are virtual key codes,
// modifiers those above.
class HotKeys {
public:
    using Ref = std::uint64_t;

    virtual ~HotKeys() = default;

    // One handler for all; an empty one removes it. Called once for each press, not for repeats.
    virtual void setHandler(std::function<void(HotKeyId)> handler) = 0;
    // Called when a registered combination was lost, as to a new keyboard mapping, and some times
    // afterwards: whoever registers all of them again has what can be had.
    virtual void setLossHandler(std::function<void()> handler) = 0;
    // No reference when the combination cannot be had: another program holds it, or no key of this
    // keyboard has the code.
    [[nodiscard]] virtual std::optional<Ref> register_(std::uint32_t keyCode,
                                                       std::uint32_t modifiers, HotKeyId id) = 0;
    virtual void unregister(Ref ref) = 0;
};

} // namespace vantrel
