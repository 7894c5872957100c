#pragma once

#include "platform/subscription.h"

#include <functional>
#include <utility>

namespace vantrel {

// A value that tells its observers of each assignment, also of one that changes nothing.
template <typename T>
class Observable {
public:
    explicit Observable(T value = {}) : value_(std::move(value)) {}

    [[nodiscard]] const T& get() const { return value_; }
    void set(T value) {
        value_ = std::move(value);
        observers_.notify(value_);
    }
    // Called at once with the value as it is, and after each assignment with the new one.
    [[nodiscard]] Subscription observe(std::function<void(const T&)> observer) const {
        observer(value_);
        return observers_.add(std::move(observer));
    }

private:
    T value_;
    mutable Observers<const T&> observers_;
};

} // namespace vantrel
