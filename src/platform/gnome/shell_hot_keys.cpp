#include "platform/gnome/shell_hot_keys.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

// By the place of the key, whatever the layout makes of it.
QString acceleratorOf(std::uint8_t keycode, std::uint32_t modifiers) {
    QString accelerator;
    for (const auto& [bit, name] :
         {std::pair{modifier::control, "<Control>"}, std::pair{modifier::option, "<Alt>"},
          std::pair{modifier::shift, "<Shift>"}, std::pair{modifier::command, "<Super>"}}) {
        if ((modifiers & bit) != 0) {
            accelerator += QLatin1String(name);
        }
    }
    return accelerator + QStringLiteral("0x%1").arg(keycode, 0, 16);
}

} // namespace

ShellHotKeys::ShellHotKeys(ShellExtension& extension, HotKeys& others, Keycode keycodeOf)
    : extension_(extension),
      others_(others),
      keycodeOf_(std::move(keycodeOf)),
      changes_(extension.onChange([this] { follow(); })) {
    tell_.setSingleShot(true);
    QObject::connect(&tell_, &QTimer::timeout, &tell_, [this] { tellShell(); });
    extension_.onRefused = [this](const auto& numbers) { takeRefusal(numbers); };
    extension_.onPressed = [this](std::uint32_t number) {
        const auto found = std::ranges::find_if(registrations_, [=](const auto& registration) {
            return registration.id.id == number && !registration.accelerator.isEmpty();
        });
        if (found != registrations_.end() && handler_) {
            // A copy, since the handler may set another one.
            const auto handler = handler_;
            handler(found->id);
        }
    };
    others_.setLossHandler([this] { reportLoss(); });
}

void ShellHotKeys::setHandler(std::function<void(HotKeyId)> handler) {
    handler_ = std::move(handler);
    others_.setHandler(handler_);
}

void ShellHotKeys::setLossHandler(std::function<void()> handler) {
    lossHandler_ = std::move(handler);
}

std::optional<HotKeys::Ref> ShellHotKeys::register_(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    HotKeyId id) {
    Registration registration{.ref = lastRef_ + 1, .id = id};
    if (atShell_) {
        const auto keycode = keycodeOf_(keyCode);
        if (!keycode) {
            return std::nullopt;
        }
        registration.accelerator = acceleratorOf(*keycode, modifiers);
        tell_.start();
        if (refused_.contains(registration.accelerator)) {
            wanted_.append(registration.accelerator);
            return std::nullopt;
        }
    } else {
        registration.others = others_.register_(keyCode, modifiers, id);
        if (!registration.others) {
            return std::nullopt;
        }
    }
    registrations_.push_back(registration);
    return ++lastRef_;
}

void ShellHotKeys::unregister(Ref ref) {
    const auto found = std::ranges::find(registrations_, ref, &Registration::ref);
    if (found == registrations_.end()) {
        return;
    }
    if (found->others) {
        others_.unregister(*found->others);
    } else {
        tell_.start();
    }
    registrations_.erase(found);
}

// In one go, after all that were registered in this one.
void ShellHotKeys::tellShell() {
    refused_ = std::exchange(wanted_, {});
    QList<ShellShortcut> shortcuts;
    for (const auto& registration : registrations_) {
        if (!registration.accelerator.isEmpty()) {
            shortcuts.append({registration.id.id, registration.accelerator});
        }
    }
    extension_.grab(shortcuts);
}

void ShellHotKeys::takeRefusal(const QList<std::uint32_t>& numbers) {
    for (const auto& registration : registrations_) {
        if (numbers.contains(registration.id.id)) {
            refused_.append(registration.accelerator);
        }
    }
    reportLoss();
}

void ShellHotKeys::follow() {
    const bool atShell = extension_.state() == MarksState::available;
    if (std::exchange(atShell_, atShell) != atShell) {
        reportLoss();
    }
}

void ShellHotKeys::reportLoss() const {
    if (const auto handler = lossHandler_) {
        handler();
    }
}

} // namespace vantrel
