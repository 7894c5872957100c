#pragma once

#include "measurements.h"

#include <cstdint>
#include <string>
#include <vector>

// What somebody does in ten hours of lessons, in about a minute, whatever the session.

namespace vantrel::bench {

// Something that a program or a compositor holds.
struct Holding {
    std::string what;
    std::uint64_t amount = 0;
    std::uint64_t growth = 0; // which is none
    const char* unit = "";
};

// Where a day is spent, with the program running and Off at first. All is done when a call returns,
// but motions.
class DayPlace {
public:
    DayPlace() = default;
    virtual ~DayPlace() = default;
    DayPlace(const DayPlace&) = delete;
    DayPlace& operator=(const DayPlace&) = delete;

    [[nodiscard]] virtual std::string name() const = 0;
    [[nodiscard]] virtual std::string systemBus() const = 0; // its address

    virtual void move(int step) = 0; // on a circle
    virtual void click(bool right) = 0;
    // Whether another program has a window over everything, which gets the clicks.
    virtual void cover(bool covered) = 0;
    virtual void lock(bool locked) = 0;
    virtual void useDisplays(int count) = 0; // one or two
    virtual void setMode(const std::string& mode) = 0;
    virtual void openPanel() = 0;
    virtual void closePanel() = 0;
    virtual void rest() {} // before what is held and what shows is looked at

    [[nodiscard]] virtual std::vector<Holding> holdings() = 0;
    [[nodiscard]] virtual bool isBlank() const = 0;
    // What the program has written, and the compositor about scripts.
    [[nodiscard]] virtual std::string errors() const = 0;
};

// Whether more is held in the evening than at noon, which marks stay on the screen, and what errors
// are written.
[[nodiscard]] Report spendDay(DayPlace& place, const Effort& effort);

} // namespace vantrel::bench
