#include "platform/kwin/desktop_shortcuts.h"

#include "platform/freedesktop/bus_call.h"
#include "platform/freedesktop/bus_structure.h"
#include "platform/input.h"

#include <QDBusMetaType>

#include <algorithm>
#include <array>
#include <utility>

namespace vantrel {

// (ai): a combination in one to four steps, as the toolkit has them.
struct DesktopKeys {
    QList<int> keys{};

    static auto members(auto& self) { return std::tie(self.keys); }
};

namespace {

const auto service = QStringLiteral("org.kde.kglobalaccel");
const auto component = QStringLiteral("vantrel");
const auto layoutService = QStringLiteral("org.kde.keyboard");
const auto layoutPath = QStringLiteral("/Layouts");
const auto layoutInterface = QStringLiteral("org.kde.KeyboardLayouts");

// By the numbers of grabs, from 1. The script frees these.
constexpr std::array<const char*, 2> actions{"toggle-highlight", "toggle-laser"};

QString actionOf(std::uint32_t number) {
    return QString::fromLatin1(actions.at(number - 1));
}

QDBusMessage shortcutsCall(const char* method, const QVariantList& arguments) {
    return callOf(service, QStringLiteral("/kglobalaccel"), QStringLiteral("org.kde.KGlobalAccel"),
                  QString::fromLatin1(method), arguments);
}

// Shift belongs to the key.
int toolkitModifiers(std::uint32_t modifiers) {
    unsigned result = 0;
    for (const auto& [bit, key] : {std::pair{modifier::control, Qt::ControlModifier},
                                   std::pair{modifier::option, Qt::AltModifier},
                                   std::pair{modifier::command, Qt::MetaModifier}}) {
        if ((modifiers & bit) != 0) {
            result |= static_cast<unsigned>(key);
        }
    }
    return static_cast<int>(result);
}

// What was granted, of what was asked for.
bool isIn(const QDBusMessage& answer, int combination) {
    const auto granted = qdbus_cast<QList<DesktopKeys>>(answer.arguments().value(0));
    return answer.type() != QDBusMessage::ErrorMessage &&
           std::ranges::any_of(granted,
                               [&](const auto& each) { return each.keys.value(0) == combination; });
}

} // namespace

DesktopShortcuts::DesktopShortcuts(QDBusConnection bus, KWinScript& script, Means means)
    : bus_(std::move(bus)),
      script_(script),
      means_(std::move(means)),
      scriptChanges_(script_.onChange([this] {
          // Where the script has ended, it has freed all of them.
          asked_.clear();
          held_.clear();
          freeOthers();
          changes_.notify();
      })) {
    qDBusRegisterMetaType<DesktopKeys>();
    qDBusRegisterMetaType<QList<DesktopKeys>>();
    // From whoever sends them: the owner of a name would be looked up, and waited for.
    bus_.connect({}, QStringLiteral("/component/") + component,
                 QStringLiteral("org.kde.kglobalaccel.Component"),
                 QStringLiteral("globalShortcutPressed"), this, SLOT(pressed(QString, QString)));
    bus_.connect({}, QStringLiteral("/component/") + component,
                 QStringLiteral("org.kde.kglobalaccel.Component"),
                 QStringLiteral("globalShortcutReleased"), this, SLOT(released(QString, QString)));
    bus_.connect({}, layoutPath, layoutInterface, QStringLiteral("layoutChanged"), this,
                 SLOT(layoutChanged(uint)));
    bus_.connect({}, layoutPath, layoutInterface, QStringLiteral("layoutListChanged"), this,
                 SLOT(askForLayout()));
    askForLayout();
    freeOthers();
}

void DesktopShortcuts::askForLayout() {
    callAsync(bus_, callOf(layoutService, layoutPath, layoutInterface, QStringLiteral("getLayout")),
              this, [this](const QDBusMessage& answer) {
                  layoutChanged(answer.type() == QDBusMessage::ErrorMessage
                                    ? 0
                                    : answer.arguments().value(0).toUInt());
              });
}

void DesktopShortcuts::grab(const std::vector<KeyGrab>& grabs) {
    for (const auto& former : std::exchange(grabs_, grabs)) {
        if (std::ranges::find(grabs_, former) == grabs_.end()) {
            free(former.number);
            std::erase(asked_, former);
        }
    }
    // One that is asked for anew would count as released.
    for (const auto& each : grabs_) {
        if (std::ranges::find(asked_, each) == asked_.end()) {
            asked_.push_back(each);
            grabKey(each);
        }
    }
}

// All are free first: the key of one may have become that of another.
void DesktopShortcuts::grabAgain() {
    const auto grabs = grabs_;
    grab({});
    grab(grabs);
    changes_.notify();
}

void DesktopShortcuts::grabKey(const KeyGrab& grab) {
    const auto refuse = [this, grab] {
        if (onRefused && std::ranges::find(grabs_, grab) != grabs_.end()) {
            onRefused({grab.number});
        }
    };
    QList<DesktopKeys> wanted;
    for (const int key : means_.keysOf(grab.keys, layout_)) {
        const int known = script_.tellsPad() ? key : key & ~static_cast<int>(Qt::KeypadModifier);
        wanted.push_back({{known | toolkitModifiers(grab.keys.modifiers), 0, 0, 0}});
    }
    if (wanted.isEmpty()) {
        QMetaObject::invokeMethod(this, refuse, Qt::QueuedConnection);
        return;
    }
    const QStringList names{component, actionOf(grab.number), QStringLiteral("Vantrel"),
                            means_.nameOf(grab.number)};
    const auto ignore = [](const QDBusMessage&) {};
    callAsync(bus_, shortcutsCall("doRegister", {names}), this, ignore);
    // For a program that is there, and not as it was the last time.
    constexpr uint presentWithoutAutoloading = 2 | 4;
    callAsync(bus_,
              shortcutsCall("setShortcutKeys",
                            {names, QVariant::fromValue(wanted), presentWithoutAutoloading}),
              this, [this, first = wanted.front().keys.front(), refuse](const auto& answer) {
                  if (isIn(answer, first)) {
                      checkOwner(first, refuse);
                  } else {
                      refuse();
                  }
              });
}

// Plasma 6.7 also grants what another has, who goes on to get it.
void DesktopShortcuts::checkOwner(int combination, const std::function<void()>& refuse) {
    callAsync(bus_, shortcutsCall("action", {combination}), this, [refuse](const auto& answer) {
        const auto owner = answer.arguments().value(0).toStringList();
        if (!owner.isEmpty() && owner.front() != component) {
            refuse();
        }
    });
}

void DesktopShortcuts::free(std::uint32_t number) {
    callAsync(bus_, shortcutsCall("unregister", {component, actionOf(number)}), this,
              [](const QDBusMessage&) {});
}

// Those of a program that was killed together with KWin, which has stored them.
void DesktopShortcuts::freeOthers() {
    for (std::uint32_t number = 1; takesKeys() && number <= actions.size(); ++number) {
        if (std::ranges::find(grabs_, number, &KeyGrab::number) == grabs_.end()) {
            free(number);
        }
    }
}

// Up to Plasma 6.6 also again and again while the keys are held.
void DesktopShortcuts::pressed(const QString& /*component*/, const QString& action) {
    // Longer than until a key repeats, should a release be missed.
    constexpr qint64 longestPause = 1000; // milliseconds
    const bool isRepeated = held_ == action && heldSince_.elapsed() < longestPause;
    held_ = action;
    heldSince_.start();
    if (isRepeated) {
        return;
    }
    for (const auto& grab : grabs_) {
        if (actionOf(grab.number) == action && onPressed) {
            onPressed(grab.number);
            return;
        }
    }
}

void DesktopShortcuts::released(const QString& /*component*/, const QString& action) {
    if (held_ == action) {
        held_.clear();
    }
}

void DesktopShortcuts::layoutChanged(uint layout) {
    if (std::exchange(layout_, layout) != layout) {
        grabAgain();
    }
}

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::DesktopKeys)
