#include "input/shortcut_button.h"

#include <QApplication>

// Shows a button that records a shortcut, for whoever ends it.
int main(int argc, char** argv) {
    struct SilentAlert final : vantrel::AlertSound {
        void beep() override {}
    };
    struct OtherKeyboard final : vantrel::Keyboard {
        [[nodiscard]] std::optional<vantrel::KeyPress> press(std::uint32_t,
                                                             std::uint32_t) const override {
            return std::nullopt;
        }
        [[nodiscard]] bool isModifier(std::uint32_t) const override { return false; }
    };
    const QApplication application(argc, argv);
    SilentAlert alert;
    const OtherKeyboard keyboard;
    vantrel::ShortcutButton button(keyboard, alert);
    button.show();
    button.record();
    return QApplication::exec();
}
