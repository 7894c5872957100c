#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace vantrel::bench {

using Samples = std::vector<double>;

// Of samples that need not be sorted; fraction 0.5 is the median. Not a number when there are none.
[[nodiscard]] double quantile(Samples samples, double fraction);
[[nodiscard]] double median(const Samples& samples);

// The same measurement of the program and of what it is compared with, taken in turns.
struct Comparison {
    std::vector<Samples> program; // one entry for each turn
    std::vector<Samples> floor;
};

// Measures first one and then the other, and again.
[[nodiscard]] Comparison inTurns(int turns, const std::function<Samples()>& measureProgram,
                                 const std::function<Samples()>& measureFloor);

// One line of the result.
struct Row {
    std::string name;
    std::string unit;
    double program = 0;
    double floor = 0;
    std::optional<double> target{}; // the largest ratio that is good enough
    // The ratios of the single turns: how much the machine itself wavers.
    double lowestRatio = 0;
    double highestRatio = 0;

    [[nodiscard]] double ratio() const { return program / floor; }
    [[nodiscard]] bool met() const { return !target || ratio() <= *target; }
};

[[nodiscard]] Row summarize(std::string name, std::string unit, const Comparison& comparison,
                            const std::function<double(const Samples&)>& statistic,
                            std::optional<double> target = {});

// Something that must hold, beside the ratios.
struct Check {
    std::string name;
    bool met = false;
    std::string found;
};

// That the median is at most that.
[[nodiscard]] Check withinMilliseconds(std::string name, const Samples& samples, double most);

struct Report {
    std::vector<Row> rows;
    std::vector<Check> checks;

    void append(const Report& other);
    [[nodiscard]] bool met() const;
    void print() const;
    [[nodiscard]] nlohmann::json json() const;
};

} // namespace vantrel::bench
