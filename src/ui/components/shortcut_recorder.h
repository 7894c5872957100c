#pragma once

#include "input/shortcut_button.h"
#include "ui/components/view_context.h"

#include <optional>

namespace vantrel {

// Shows a shortcut and records another one. Screen readers are told its title as a description; the
// name is its owner's to set.
class ShortcutRecorder : public ShortcutButton {
public:
    // The title while recording stands for a missing shortcut too.
    ShortcutRecorder(ViewContext& view, const Binding<std::optional<Shortcut>>& shortcut,
                     const Wording& recordingTitle);
};

} // namespace vantrel
