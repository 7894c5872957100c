#pragma once

#include <functional>

namespace vantrel {

// A value that is read and written where it lives.
template <typename T>
struct Binding {
    std::function<T()> get;
    std::function<void(const T&)> set;
};

} // namespace vantrel
