#pragma once

#include "platform/gnome/shell_extension.h"
#include "platform/input.h"

#include <QTimer>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace vantrel {

// Key combinations that GNOME Shell takes while the extension is there, in whatever window, and
// other hot keys take otherwise. Whoever has registered some is told to do so again when that
// changes. What the shell refuses is known only afterwards: then too.
class ShellHotKeys final : public HotKeys {
public:
    // The key's number on this keyboard, by its virtual key code.
    using Keycode = std::function<std::optional<std::uint8_t>(std::uint32_t keyCode)>;

    // The others must outlive this, and so must the extension, whose shortcuts are this one's.
    ShellHotKeys(ShellExtension& extension, HotKeys& others, Keycode keycodeOf);

    void setHandler(std::function<void(HotKeyId)> handler) override;
    void setLossHandler(std::function<void()> handler) override;
    std::optional<Ref> register_(std::uint32_t keyCode, std::uint32_t modifiers,
                                 HotKeyId id) override;
    void unregister(Ref ref) override;

private:
    struct Registration {
        Ref ref = 0;
        HotKeyId id;
        QString accelerator{};       // of the shell's
        std::optional<Ref> others{}; // of the others'
    };

    void takeAccelerator(std::uint32_t number, const QString& accelerator);
    void tellShell();
    void takeRefusal(const QList<std::uint32_t>& numbers);
    void follow();
    void reportLoss() const;

    ShellExtension& extension_;
    HotKeys& others_;
    Keycode keycodeOf_;
    std::function<void(HotKeyId)> handler_;
    std::function<void()> lossHandler_;
    std::vector<Registration> registrations_;
    Ref lastRef_ = 0;
    bool atShell_ = false;
    QList<QString> refused_; // and not to be asked for again as long as they are registered
    QList<QString> wanted_;  // of those, since the shell was told last
    QTimer tell_;
    Subscription changes_;
};

} // namespace vantrel
