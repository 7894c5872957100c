#include "ui/components/shortcut_recorder.h"

#include "ui/components/style.h"

namespace vantrel {

namespace {

constexpr QSize recorderSize(160, 28);

} // namespace

ShortcutRecorder::ShortcutRecorder(ViewContext& view,
                                   const Binding<std::optional<Shortcut>>& shortcut,
                                   const Wording& recordingTitle)
    : ShortcutButton(view.desktop().keyboard, view.desktop().hotKeys, view.desktop().alertSound) {
    setFont(bodyText.font());
    setFixedSize(recorderSize * textScale());
    onShortcut = shortcut.set;
    view.follow(this, [this, &view, shortcut, recordingTitle] {
        const auto bound = shortcut.get();
        prompt = view.say(recordingTitle);
        savedTitle = bound ? QString::fromStdString(bound->display) : prompt;
        updateTitle();
    });
}

} // namespace vantrel
