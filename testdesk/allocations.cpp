#include "testdesk/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::uint64_t> taken = 0;
} // namespace

// None of them inline: the compiler would see std::free() given what another new has made.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++taken;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++taken;
    return std::malloc(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace vantrel::desktop {

std::uint64_t allocations() {
    return taken;
}

} // namespace vantrel::desktop
