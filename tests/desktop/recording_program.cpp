#include "input/shortcut_button.h"

#include <QApplication>
#include <QTimer>

#include <chrono>
#include <cstdio>

// Shows a button that records a shortcut, for whoever ends it, and says when it has the keyboard.
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
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &button, [&] {
        if (QWidget::keyboardGrabber() == &button) {
            std::puts("recording");
            std::fflush(stdout);
            look.stop();
        }
    });
    look.start(std::chrono::milliseconds(10));
    return QApplication::exec();
}
