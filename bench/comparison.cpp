#include "comparison.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iomanip>
#include <limits>
#include <sstream>
#include <utility>

#include <nlohmann/json.hpp>

namespace vantrel::bench {
namespace {

Samples pooled(const std::vector<Samples>& turns) {
    Samples all;
    for (const Samples& turn : turns) {
        all.insert(all.end(), turn.begin(), turn.end());
    }
    return all;
}

const char* verdict(const Row& row) {
    if (!row.target) {
        return "";
    }
    return row.met() ? "met" : "MISSED";
}

std::string limitOf(const Row& row) {
    if (!row.target) {
        return "-";
    }
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << *row.target;
    return text.str();
}

} // namespace

double quantile(Samples samples, double fraction) {
    if (samples.empty()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const auto index =
        static_cast<std::size_t>(std::lround(fraction * static_cast<double>(samples.size() - 1)));
    const auto place = samples.begin() + static_cast<std::ptrdiff_t>(index);
    std::nth_element(samples.begin(), place, samples.end());
    return *place;
}

double median(const Samples& samples) {
    return quantile(samples, 0.5);
}

Comparison inTurns(int turns, const std::function<Samples()>& measureProgram,
                   const std::function<Samples()>& measureFloor) {
    Comparison comparison;
    for (int i = 0; i < turns; ++i) {
        comparison.program.push_back(measureProgram());
        comparison.floor.push_back(measureFloor());
    }
    return comparison;
}

Row summarize(std::string name, std::string unit, const Comparison& comparison,
              const std::function<double(const Samples&)>& statistic,
              std::optional<double> target) {
    Samples ratios;
    for (std::size_t i = 0; i < comparison.program.size(); ++i) {
        ratios.push_back(statistic(comparison.program[i]) / statistic(comparison.floor[i]));
    }
    const auto [lowest, highest] = std::minmax_element(ratios.begin(), ratios.end());
    return {.name = std::move(name),
            .unit = std::move(unit),
            .program = statistic(pooled(comparison.program)),
            .floor = statistic(pooled(comparison.floor)),
            .target = target,
            .lowestRatio = *lowest,
            .highestRatio = *highest};
}

Check withinMilliseconds(std::string name, const Samples& samples, double most) {
    std::ostringstream text;
    text << std::setprecision(3) << median(samples) << " ms, at most " << quantile(samples, 1)
         << " ms";
    return {.name = std::move(name), .met = median(samples) <= most, .found = text.str()};
}

void Report::append(const Report& other) {
    rows.insert(rows.end(), other.rows.begin(), other.rows.end());
    checks.insert(checks.end(), other.checks.begin(), other.checks.end());
}

bool Report::met() const {
    return std::ranges::all_of(rows, &Row::met) && std::ranges::all_of(checks, &Check::met);
}

void Report::print() const {
    std::printf("%-44s %12s %12s %-10s %6s %15s %7s\n", "", "program", "floor", "", "ratio",
                "single turns", "target");
    for (const Row& row : rows) {
        std::printf("%-44s %12.3f %12.3f %-10s %6.2f %7.2f-%-7.2f %7s %s\n", row.name.c_str(),
                    row.program, row.floor, row.unit.c_str(), row.ratio(), row.lowestRatio,
                    row.highestRatio, limitOf(row).c_str(), verdict(row));
    }
    for (const Check& check : checks) {
        std::printf("%-44s %s: %s\n", check.name.c_str(), check.met ? "met" : "MISSED",
                    check.found.c_str());
    }
}

nlohmann::json Report::json() const {
    nlohmann::json document{{"comparisons", nlohmann::json::array()},
                            {"checks", nlohmann::json::array()}};
    for (const Row& row : rows) {
        nlohmann::json entry{{"name", row.name},
                             {"unit", row.unit},
                             {"program", row.program},
                             {"floor", row.floor},
                             {"ratio", row.ratio()},
                             {"lowestRatio", row.lowestRatio},
                             {"highestRatio", row.highestRatio},
                             {"met", row.met()}};
        if (row.target) {
            entry["target"] = *row.target;
        }
        document["comparisons"].push_back(entry);
    }
    for (const Check& check : checks) {
        document["checks"].push_back(
            {{"name", check.name}, {"met", check.met}, {"found", check.found}});
    }
    return document;
}

} // namespace vantrel::bench
