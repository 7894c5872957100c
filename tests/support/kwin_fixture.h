#pragma once

#include "overlay/effect.h"
#include "support/event_loop.h"
#include "support/mark_pixels.h"
#include "support/under_test.h"
#include "testdesk/kwin_session.h"

#include <gtest/gtest.h>

#include <string>

namespace vantrel::desktop {

// A session that shows marks, and is left without a fault of theirs.
class MarkedKWin : public KWinSession {
public:
    explicit MarkedKWin(Options options = {}) : KWinSession(withData(options)) { moveTo(300, 300); }
    ~MarkedKWin() { EXPECT_EQ(complaints(), expectedComplaints_); }

    // Another display is entered by the second motion only.
    void moveTo(double x, double y) {
        client().moveTo(x, y);
        client().moveTo(x, y);
        place_ = {x, y};
    }
    // Waits for one more.
    void expectComplaint(const std::string& why) {
        EXPECT_TRUE(runUntil([&] { return complaints().size() > expectedComplaints_.size(); }))
            << why;
        expectedComplaints_ = complaints();
    }
    // The pixel of the pointer.
    [[nodiscard]] QPoint center(double scale = 1) const { return (place_ * scale).toPoint(); }
    // By what covers all around the pointer.
    [[nodiscard]] bool isMarked() const { return qRed(pixel(center() + QPoint(5, 0))) > 100; }
    // Waits until the pointer is marked so.
    void expectMark(const Effect& effect, double scale, const std::string& where) const {
        Differences last;
        EXPECT_TRUE(runUntil([&] {
            last = differences(picture(), center(scale), effect, scale);
            return last.areSlight();
        })) << where
            << " " << last;
    }

private:
    static Options withData(Options options) {
        if (options.dataFolder.empty()) {
            options.dataFolder = underTest("VANTREL_DATA", VANTREL_DATA);
        }
        return options;
    }

    QPointF place_;
    std::string expectedComplaints_;
};

} // namespace vantrel::desktop
