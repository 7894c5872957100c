#pragma once

#include "desk.h"

#include <vector>

namespace vantrel::screenshots {

// One start of Vantrel and the pictures that are taken of it.
struct Shot {
    const char* title;
    void (*take)(Desk&);
};

[[nodiscard]] const std::vector<Shot>& shots();

} // namespace vantrel::screenshots
