#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vantrel {

// Something that goes on until this is destroyed: an observer, a scheduled call.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
    Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            end_ = std::exchange(other.end_, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { cancel(); }

    void cancel() {
        if (auto end = std::exchange(end_, nullptr)) {
            end();
        }
    }

private:
    std::function<void()> end_;
};

// The observers of one kind of change. An observer may end its own or another's subscription, or
// add one, while it is being notified; one that was added meanwhile hears of the next change.
template <typename... Arguments>
class Observers {
public:
    using Callback = std::function<void(Arguments...)>;

    [[nodiscard]] Subscription add(Callback callback) {
        auto entry = std::make_shared<Callback>(std::move(callback));
        entries_->push_back(entry);
        return Subscription([list = std::weak_ptr(entries_), entry] {
            *entry = nullptr;
            if (const auto entries = list.lock()) {
                std::erase(*entries, entry);
            }
        });
    }

    void notify(Arguments... arguments) const {
        const auto entries = *entries_;
        for (const auto& entry : entries) {
            // A copy, since the callback may end its own subscription.
            if (const auto callback = *entry) {
                callback(arguments...);
            }
        }
    }

    [[nodiscard]] bool empty() const { return entries_->empty(); }

private:
    using Entries = std::vector<std::shared_ptr<Callback>>;
    std::shared_ptr<Entries> entries_ = std::make_shared<Entries>();
};

} // namespace vantrel
