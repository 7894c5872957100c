#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vantrel::headless {

// What a real desktop would punish, one line each.
struct Faults {
    std::vector<std::string> list;

    void add(std::string fault) { list.push_back(std::move(fault)); }
};

} // namespace vantrel::headless
