#pragma once

#include "pictures.h"
#include "show.h"

#include <functional>
#include <vector>

namespace vantrel::demo {

struct Scene {
    Caption caption;
    bool inShortForm = false;
    std::function<void(Show&)> play;
};

// Leaves Vantrel running, and off, for the first scene.
void prepare(Show& show);

// In the order in which they are played. Each finds Vantrel as the one before left it.
[[nodiscard]] std::vector<Scene> scenes(const Session& session);

} // namespace vantrel::demo
