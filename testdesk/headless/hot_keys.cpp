#include "testdesk/headless/hot_keys.h"

#include <algorithm>
#include <utility>

namespace vantrel::headless {

HotKeys::~HotKeys() {
    if (!registrations_.empty()) {
        faults_.add("a hot key was left behind");
    }
    if (handler_) {
        faults_.add("the handler of the hot keys was left behind");
    }
}

void HotKeys::setHandler(std::function<void(HotKeyId)> handler) {
    if (handler && handler_) {
        faults_.add("the handler of the hot keys was replaced");
    }
    handler_ = std::move(handler);
}

std::optional<HotKeys::Ref> HotKeys::register_(std::uint32_t keyCode, std::uint32_t modifiers,
                                               HotKeyId id) {
    const Combination combination{keyCode, modifiers};
    if (std::ranges::find(registrations_, combination, &Registration::combination) !=
        registrations_.end()) {
        faults_.add("a hot key was registered twice");
        return std::nullopt;
    }
    if (std::ranges::find(heldByOthers, combination) != heldByOthers.end()) {
        return std::nullopt;
    }
    registrations_.push_back({++lastRef_, combination, id});
    return lastRef_;
}

void HotKeys::unregister(Ref ref) {
    if (std::erase_if(registrations_, [ref](const auto& known) { return known.ref == ref; }) == 0) {
        faults_.add("a hot key was unregistered that was not there");
    }
}

void HotKeys::lose(const Combination& combination) {
    heldByOthers.push_back(combination);
    lossHandler_();
}

bool HotKeys::press(const Combination& combination) {
    const auto found = std::ranges::find(registrations_, combination, &Registration::combination);
    if (found == registrations_.end()) {
        return false;
    }
    if (const auto handler = handler_) {
        handler(found->id);
    }
    return true;
}

std::vector<Combination> HotKeys::registered() const {
    std::vector<Combination> combinations;
    std::ranges::transform(registrations_, std::back_inserter(combinations),
                           &Registration::combination);
    return combinations;
}

} // namespace vantrel::headless
