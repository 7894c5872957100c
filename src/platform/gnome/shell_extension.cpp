#include "platform/gnome/shell_extension.h"

#include "platform/freedesktop/bus_call.h"
#include "platform/freedesktop/xdg_directories.h"
#include "platform/gnome/effect_message.h"
#include "platform/input.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace vantrel {

namespace {

const auto properties = QStringLiteral("org.freedesktop.DBus.Properties");
const auto shellService = QStringLiteral("org.gnome.Shell");
const auto shellPath = QStringLiteral("/org/gnome/Shell");
const auto extensionsInterface = QStringLiteral("org.gnome.Shell.Extensions");
const auto agentService = QStringLiteral("org.vantrel.Marks1");
const auto agentPath = QStringLiteral("/org/vantrel/Marks1");

constexpr int retryInterval = 2000; // milliseconds

// In the user defaults: true from when the user has asked for an extension that the shell finds at
// the next login only.
constexpr std::string_view awaitedKey = "gnomeExtensionAwaited";

// By the place of the key, whatever the layout makes of it.
QString acceleratorOf(const KeyCombination& keys) {
    QString accelerator;
    for (const auto& [bit, name] :
         {std::pair{modifier::control, "<Control>"}, std::pair{modifier::option, "<Alt>"},
          std::pair{modifier::shift, "<Shift>"}, std::pair{modifier::command, "<Super>"}}) {
        if ((keys.modifiers & bit) != 0) {
            accelerator += QLatin1String(name);
        }
    }
    // The shell takes it for a name unless there are two digits.
    return accelerator + QStringLiteral("0x%1").arg(keys.keycode, 2, 16, QLatin1Char('0'));
}

bool isError(const QDBusMessage& answer) {
    return answer.type() == QDBusMessage::ErrorMessage;
}

bool isBusy(const QDBusMessage& answer) {
    return answer.errorName() == agentService + QStringLiteral(".Error.Busy");
}

// The shell hangs, and may carry it out all the same.
bool isMissing(const QDBusMessage& answer) {
    return QDBusError(answer).type() == QDBusError::NoReply;
}

// Of an answer; an empty one for an error.
QVariant valueIn(const QDBusMessage& answer) {
    const auto arguments = answer.arguments();
    if (isError(answer) || arguments.isEmpty()) {
        return {};
    }
    const auto& value = arguments.front();
    return value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
}

// Whether the shell will find it at the next login.
bool install(const QString& uuid, const std::filesystem::path& dataFolder) {
    return offerToSession(dataFolder,
                          std::filesystem::path("gnome-shell/extensions") / uuid.toStdString());
}

// What the shell has may be of an earlier program, also where it does not load or work; an update
// has not reached a copy of the user's own.
bool mayBeOutdated(const ShellReport& report) {
    const auto state = stateOf(report);
    return state == MarksState::otherVersion || state == MarksState::unsupported ||
           (state == MarksState::failed && !report.version);
}

} // namespace

ShellExtension::ShellExtension(QDBusConnection bus, UserDefaults& defaults,
                               std::filesystem::path dataFolder)
    : bus_(std::move(bus)), defaults_(defaults), dataFolder_(std::move(dataFolder)) {
    qDBusRegisterMetaType<ShellShortcut>();
    qDBusRegisterMetaType<QList<ShellShortcut>>();
    qDBusRegisterMetaType<ShellEntry>();
    qDBusRegisterMetaType<QList<ShellEntry>>();
    retry_.setInterval(retryInterval);
    retry_.setSingleShot(true);
    connect(&retry_, &QTimer::timeout, this, [this] { tellEffect(); });
    bus_.connect({}, localPath, localInterface, QStringLiteral("Disconnected"), this,
                 SLOT(loseBus()));
    followOwner(bus_, shellService, this, [this](const QString& owner) { setShell(owner); });
    followOwner(bus_, agentService, this, [this](const QString& owner) { setAgent(owner); });
}

Subscription ShellExtension::onChange(std::function<void()> callback) {
    return changes_.add(std::move(callback));
}

// Signals are connected from the unique name: a well-known one would be looked up, and waited for.
void ShellExtension::setShell(const QString& owner) {
    if (owner == shell_) {
        return;
    }
    const auto signal = QStringLiteral("ExtensionStateChanged");
    bus_.disconnect(shell_, shellPath, extensionsInterface, signal, this,
                    SLOT(extensionChanged(QString, QVariantMap)));
    shell_ = owner;
    if (owner.isEmpty()) {
        update([](auto& report) { report = {}; });
        return;
    }
    bus_.connect(owner, shellPath, extensionsInterface, signal, this,
                 SLOT(extensionChanged(QString, QVariantMap)));
    ask(shell_,
        callOf(owner, shellPath, properties, QStringLiteral("Get"),
               {extensionsInterface, QStringLiteral("ShellVersion")}),
        [this](const QDBusMessage& answer) {
            uuid_ = extensionFor(valueIn(answer).toString());
            askForExtension();
        });
}

void ShellExtension::askForExtension() {
    ask(shell_,
        callOf(shell_, shellPath, extensionsInterface, QStringLiteral("GetExtensionInfo"), {uuid_}),
        [this](const QDBusMessage& answer) {
            takeExtension(qdbus_cast<QVariantMap>(valueIn(answer)));
        });
}

void ShellExtension::extensionChanged(const QString& uuid, const QVariantMap& info) {
    if (uuid == uuid_) {
        takeExtension(info);
    }
}

void ShellExtension::takeExtension(const QVariantMap& info) {
    const auto state = info.value(QStringLiteral("state"));
    const auto known =
        state.isValid() ? std::optional(ExtensionState(state.toInt())) : std::nullopt;
    const bool wasAwaited = defaults_.boolean(awaitedKey);
    const bool isAwaited = wasAwaited && known != ExtensionState::enabled;
    if (isAwaited != wasAwaited) {
        defaults_.setBoolean(awaitedKey, isAwaited);
    }
    update([&](auto& report) {
        report.hasShell = true;
        report.extension = known;
        report.isAwaited = isAwaited;
    });
    // It was asked for before the login that made it known.
    if (isAwaited && (known == ExtensionState::disabled || known == ExtensionState::initialized)) {
        switchOn();
    }
}

// None works while the shell has all of them off.
void ShellExtension::enable() {
    if (!shell_.isEmpty()) {
        const QVariant on = QVariant::fromValue(QDBusVariant(true));
        call(callOf(shell_, shellPath, properties, QStringLiteral("Set"),
                    {extensionsInterface, QStringLiteral("UserExtensionsEnabled"), on}),
             [](const QDBusMessage& /*answer*/) {});
        switchOn();
    }
}

void ShellExtension::switchOn() {
    call(callOf(shell_, shellPath, extensionsInterface, QStringLiteral("EnableExtension"), {uuid_}),
         [this](const QDBusMessage& answer) {
             const bool isAwaited = !valueIn(answer).toBool() && install(uuid_, dataFolder_);
             if (isAwaited != defaults_.boolean(awaitedKey)) {
                 defaults_.setBoolean(awaitedKey, isAwaited);
             }
             update([&](auto& report) { report.isAwaited = isAwaited; });
         });
}

void ShellExtension::setAgent(const QString& owner) {
    if (owner == agent_) {
        return;
    }
    connectAgent(false);
    agent_ = owner;
    toldEffect_.reset();
    retry_.stop();
    update([](auto& report) {
        report.version.reset();
        report.servesOther = false;
        report.hasFailed = false;
    });
    if (owner.isEmpty()) {
        return;
    }
    connectAgent(true);
    ask(agent_,
        callOf(owner, agentPath, properties, QStringLiteral("Get"),
               {agentService, QStringLiteral("Version")}),
        [this](const QDBusMessage& answer) {
            if (isError(answer)) {
                return;
            }
            update([&](auto& report) { report.version = valueIn(answer).toUInt(); });
            tellEffect();
            tellTheRest();
        });
}

void ShellExtension::tellTheRest() {
    if (!shortcuts_.isEmpty()) {
        tellShortcuts();
    }
    if (item_) {
        tellItem();
    }
}

void ShellExtension::connectAgent(bool on) {
    const auto change = [&](const char* signal, const char* slot) {
        const auto name = QString::fromLatin1(signal);
        on ? bus_.connect(agent_, agentPath, agentService, name, this, slot)
           : bus_.disconnect(agent_, agentPath, agentService, name, this, slot);
    };
    change("Pressed", SLOT(pressed(uint)));
    change("ItemClicked", SLOT(itemClicked(QDBusMessage)));
    change("EntryChosen", SLOT(entryChosen(uint)));
}

void ShellExtension::show(const Effect& effect) {
    effect_ = effect;
    tellEffect();
}

void ShellExtension::clear() {
    effect_.reset();
    tellEffect();
}

void ShellExtension::tellEffect() {
    const bool isTold =
        toldEffect_ && *toldEffect_ == effect_ && !report_.servesOther && !report_.hasFailed;
    if (report_.version != extensionVersion || isTold) {
        return;
    }
    toldEffect_.emplace(effect_);
    call(effect_ ? callOf(agent_, agentPath, agentService, QStringLiteral("Show"),
                          {messageOf(*effect_)})
                 : callOf(agent_, agentPath, agentService, QStringLiteral("Clear")),
         [this, asked = agent_](const QDBusMessage& answer) {
             if (asked == agent_) {
                 takeAnswer(answer);
             }
         });
}

void ShellExtension::takeAnswer(const QDBusMessage& answer) {
    const bool servesOther = isBusy(answer);
    if (report_.servesOther && !servesOther) {
        tellTheRest();
    }
    update([&](auto& report) {
        report.servesOther = servesOther;
        report.hasFailed = isError(answer) && !servesOther;
    });
    if (servesOther || isMissing(answer)) {
        retry_.start();
    }
}

void ShellExtension::grab(const std::vector<KeyGrab>& grabs) {
    QList<ShellShortcut> shortcuts;
    for (const auto& grab : grabs) {
        shortcuts.append({grab.number, acceleratorOf(grab.keys)});
    }
    if (shortcuts != shortcuts_) {
        shortcuts_ = shortcuts;
        tellShortcuts();
    }
}

void ShellExtension::tellShortcuts() {
    if (report_.version != extensionVersion) {
        return;
    }
    call(callOf(agent_, agentPath, agentService, QStringLiteral("Grab"),
                {QVariant::fromValue(shortcuts_)}),
         [this, shortcuts = shortcuts_](const QDBusMessage& answer) {
             auto refused = qdbus_cast<QList<std::uint32_t>>(valueIn(answer));
             if (isError(answer) && !isBusy(answer) && !isMissing(answer)) {
                 std::ranges::transform(shortcuts, std::back_inserter(refused),
                                        &ShellShortcut::number);
             }
             if (shortcuts == shortcuts_ && !refused.isEmpty() && onRefused) {
                 onRefused({refused.begin(), refused.end()});
             }
         });
}

// Not told again when the extension comes back: the window has lost the keyboard in between.
void ShellExtension::leaveKeys(bool left) {
    if (report_.version == extensionVersion) {
        call(callOf(agent_, agentPath, agentService, QStringLiteral("LeaveKeys"), {left}),
             [](const QDBusMessage& /*answer*/) {});
    }
}

void ShellExtension::setItem(const std::optional<ShellItem>& item) {
    if (item != item_) {
        item_ = item;
        tellItem();
    }
}

void ShellExtension::tellItem() {
    if (report_.version != extensionVersion) {
        return;
    }
    const auto item = item_.value_or(ShellItem());
    call(callOf(agent_, agentPath, agentService, QStringLiteral("SetItem"),
                {item.picture, item.description, QVariant::fromValue(item.entries)}),
         [](const QDBusMessage& /*answer*/) {});
}

void ShellExtension::itemClicked(const QDBusMessage& message) {
    if (onItemClicked && !message.arguments().isEmpty()) {
        onItemClicked(qdbus_cast<QRect>(message.arguments().front()));
    }
}

void ShellExtension::entryChosen(uint number) {
    if (onEntryChosen) {
        onEntryChosen(number);
    }
}

void ShellExtension::pressed(uint number) {
    if (onPressed) {
        onPressed(number);
    }
}

void ShellExtension::loseBus() {
    setAgent({});
    setShell({});
}

template <typename Change>
void ShellExtension::update(Change change) {
    const auto before = state();
    change(report_);
    if (state() != before) {
        if (mayBeOutdated(report_)) {
            install(uuid_, dataFolder_);
        }
        changes_.notify();
    }
}

void ShellExtension::ask(const QString& peer, const QDBusMessage& question,
                         const std::function<void(const QDBusMessage&)>& answered) {
    call(question, [=, this, &peer, asked = peer](const QDBusMessage& answer) {
        if (asked != peer) {
            return;
        }
        if (!isMissing(answer)) {
            answered(answer);
            return;
        }
        QTimer::singleShot(retryInterval, this, [=, this, &peer] {
            if (asked == peer) {
                ask(peer, question, answered);
            }
        });
    });
}

void ShellExtension::call(const QDBusMessage& message,
                          std::function<void(const QDBusMessage&)> answered) {
    callAsync(bus_, message, this, std::move(answered));
}

} // namespace vantrel
