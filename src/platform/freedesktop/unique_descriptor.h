#pragma once

#include <unistd.h>
#include <utility>

namespace vantrel {

// An open file descriptor, closed with its owner; -1 when there is none.
class UniqueDescriptor {
public:
    UniqueDescriptor() = default;
    explicit UniqueDescriptor(int descriptor) : descriptor_(descriptor) {}
    UniqueDescriptor(UniqueDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    UniqueDescriptor& operator=(UniqueDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        other.reset();
        return *this;
    }
    UniqueDescriptor(const UniqueDescriptor&) = delete;
    UniqueDescriptor& operator=(const UniqueDescriptor&) = delete;
    ~UniqueDescriptor() { reset(); }

    [[nodiscard]] int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }

    void reset() {
        if (const int descriptor = std::exchange(descriptor_, -1); descriptor >= 0) {
            close(descriptor);
        }
    }

private:
    int descriptor_ = -1;
};

} // namespace vantrel
