#include "support/overlay_fixture.h"
#include "testdesk/allocations.h"

#include <poll.h>

namespace vantrel::desktop {
namespace {

TEST_F(OverlayDesktopTest, TakesNoMemoryToFollowThePointer) {
    paintDesktop();
    startCompositing();
    start();
    input.moveTo({100, 100});
    // The compositing manager's own windows are there by then.
    ASSERT_TRUE(becomes({100, 100}, blended(yellow, 0.35)));
    runFor(std::chrono::milliseconds(200));
    std::uint64_t taken = 0;
    // Without the toolkit's event loop, which is not the program's.
    const auto handleWhatComes = [&] {
        pollfd descriptor{connection->descriptor(), POLLIN, 0};
        poll(&descriptor, 1, 20);
        const auto before = allocations();
        connection->dispatch();
        taken += allocations() - before;
    };
    for (int x = 0; x < 200; ++x) {
        input.moveTo({100 + x, 200});
        handleWhatComes();
    }
    ASSERT_EQ(x11->pointer.lastLocation().x, 299);
    for (int i = 0; i < 60; ++i) {
        handleWhatComes();
    }
    EXPECT_EQ(taken, 0U);
}

} // namespace
} // namespace vantrel::desktop
