#pragma once

#include "testdesk/headless/desktop.h"

#include <gtest/gtest.h>

#include <memory>

namespace vantrel {

// A desktop in memory that lists no fault when the test is over, and what it left behind was taken
// away by then.
class HeadlessTest : public ::testing::Test {
protected:
    void TearDown() override {
        EXPECT_TRUE(desktop.faults.list.empty()) << desktop.faults.list.front();
    }

    static Screen screen(std::uint32_t id, GlobalRect frame, double rate = 60, double scale = 1) {
        return {.id = id,
                .frame = frame,
                .visibleFrame = frame,
                .backingScale = scale,
                .maximumFramesPerSecond = rate};
    }

    headless::Desktop desktop;
};

} // namespace vantrel
