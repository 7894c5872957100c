#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace vantrel::desktop {

struct RequestKind {
    std::uint8_t major = 0;
    std::uint8_t minor = 0; // 0 for requests of the core protocol

    auto operator<=>(const RequestKind&) const = default;
};

struct TrafficCounts {
    std::map<RequestKind, std::uint64_t> requests;
    std::uint64_t requestBytes = 0;
    std::uint64_t replies = 0;
    std::uint64_t events = 0;
    std::map<std::uint8_t, std::uint64_t> errors; // by error code
    std::uint64_t answerBytes = 0;                // replies, events and errors
    // The frame numbers that the server's Present extension reported to NotifyMSC, in order.
    std::vector<std::uint64_t> frames;

    [[nodiscard]] std::uint64_t totalRequests() const;
    [[nodiscard]] std::uint64_t count(RequestKind kind) const;
};

// What came since an earlier count of the same traffic.
[[nodiscard]] TrafficCounts operator-(const TrafficCounts& now, const TrafficCounts& before);

// Frames that passed between the first and the last one reported, and were not reported.
[[nodiscard]] std::uint64_t missedFrames(const TrafficCounts& counts);

// Stands between programs and a display, passes everything on and counts it.
class XTraffic {
public:
    explicit XTraffic(const std::string& display);
    ~XTraffic();
    XTraffic(const XTraffic&) = delete;
    XTraffic& operator=(const XTraffic&) = delete;

    // The name under which programs reach the display through this.
    [[nodiscard]] std::string display() const;
    // Of all programs since the start.
    [[nodiscard]] TrafficCounts counts() const;

private:
    void run();
    void countRequest(std::span<const std::uint8_t> request);
    void countAnswer(std::span<const std::uint8_t> answer);

    std::string server_;
    std::uint8_t presentMajor_ = 0;
    int number_ = 0;
    int listening_ = -1;
    int stop_ = -1;
    mutable std::mutex mutex_;
    TrafficCounts counts_;
    std::thread thread_;
};

} // namespace vantrel::desktop
