#include "platform/kwin/kwin_script.h"

#include "platform/freedesktop/bus_call.h"
#include "platform/freedesktop/xdg_directories.h"
#include "platform/kwin/script_message.h"

#include <QDBusArgument>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

const auto kwinService = QStringLiteral("org.kde.KWin");
const auto scriptingPath = QStringLiteral("/Scripting");
const auto scriptingInterface = QStringLiteral("org.kde.kwin.Scripting");
const auto effectsPath = QStringLiteral("/Effects");
const auto effectsInterface = QStringLiteral("org.kde.kwin.Effects");
const auto ownName = QStringLiteral("org.vantrel.KWinMarks1");
const auto ownPath = QStringLiteral("/org/vantrel/KWinMarks1");
const auto scriptName = QStringLiteral("vantrel");
const auto effectName = QStringLiteral("vantrel-presses");
const auto effectPlace = std::filesystem::path("kwin/effects") / effectName.toStdString();

// Milliseconds. A call may take 25 seconds on the bus.
constexpr int longestHold = 20'000;
// The script of a program that was killed a moment ago goes in so many.
constexpr int scriptRetry = 100;
constexpr int mostAttempts = 20;
// As a rule the script speaks up sooner.
constexpr int numberCheck = 1'000;
// KWin looks for new effects from time to time only.
constexpr int effectRetry = 5'000;
constexpr int mostEffectAttempts = 12;

QVariant valueIn(const QDBusMessage& answer) {
    return answer.type() == QDBusMessage::ErrorMessage ? QVariant() : answer.arguments().value(0);
}

} // namespace

KWinScript::KWinScript(QDBusConnection bus, std::filesystem::path dataFolder, Paint paint)
    : bus_(std::move(bus)), dataFolder_(std::move(dataFolder)), paint_(std::move(paint)) {
    hold_.setSingleShot(true);
    connect(&hold_, &QTimer::timeout, this, [this] { checkScript(); });
    retry_.setSingleShot(true);
    retry_.setInterval(scriptRetry);
    connect(&retry_, &QTimer::timeout, this, [this] { load(); });
    effectRetry_.setSingleShot(true);
    effectRetry_.setInterval(effectRetry);
    connect(&effectRetry_, &QTimer::timeout, this, [this] { loadEffect(); });
    bus_.registerVirtualObject(ownPath, this);
    bus_.connect({}, localPath, localInterface, QStringLiteral("Disconnected"), this,
                 SLOT(loseBus()));
    bus_.connect(busService, busPath, busService, QStringLiteral("NameAcquired"), {ownName},
                 QStringLiteral("s"), this, SLOT(nameAcquired(QString)));
    followOwner(bus_, kwinService, this, [this](const QString& owner) { setKWin(owner); });
}

KWinScript::~KWinScript() {
    // The script learns of it by the error, and goes.
    if (waiting_) {
        bus_.send(waiting_->createErrorReply(QDBusError::UnknownObject, {}));
    }
    bus_.unregisterObject(ownPath);
    bus_.send(busCall(QStringLiteral("ReleaseName"), {ownName}));
}

Subscription KWinScript::onChange(std::function<void()> callback) {
    return changes_.add(std::move(callback));
}

void KWinScript::update(MarksState state, bool seesPresses) {
    if (std::exchange(state_, state) != state ||
        std::exchange(seesPresses_, seesPresses) != seesPresses) {
        seesPresses_ = seesPresses;
        changes_.notify();
    }
}

void KWinScript::setKWin(const QString& owner) {
    if (owner == kwin_) {
        return;
    }
    kwin_ = owner;
    tellsPad_ = true;
    waiting_.reset();
    hold_.stop();
    retry_.stop();
    effectRetry_.stop();
    update(MarksState::none, true);
    if (!owner.isEmpty()) {
        takeName();
    }
}

// One program in the session has it, since KWin has one of each script; others wait for it.
void KWinScript::takeName() {
    constexpr uint noFlags = 0;
    callAsync(bus_, busCall(QStringLiteral("RequestName"), {ownName, noFlags}), this,
              [this](const QDBusMessage& answer) {
                  constexpr uint isQueued = 2;
                  constexpr uint isOwnerAlready = 4;
                  switch (valueIn(answer).toUInt()) {
                  case isQueued:
                      update(MarksState::busy, true);
                      break;
                  case isOwnerAlready:
                      nameAcquired(ownName);
                      break;
                  default:
                      break;
                  }
              });
}

void KWinScript::nameAcquired(const QString& name) {
    if (name == ownName && !kwin_.isEmpty()) {
        attempts_ = 0;
        load();
    }
}

void KWinScript::load() {
    hold_.start(longestHold);
    const auto path = dataFolder_ / "vantrel/kwin" / VANTREL_VERSION / "marks.qml";
    call(scriptingPath, scriptingInterface, "loadDeclarativeScript",
         {QString::fromStdString(path), scriptName}, [this](const QDBusMessage& answer) {
             const auto number = valueIn(answer);
             takeNumber(number.isValid() ? number.toInt() : -1);
         });
}

// None while the script of an earlier program is there, or one that has spoken up by now.
void KWinScript::takeNumber(int number) {
    if (state_ == MarksState::available) {
        return;
    }
    if (number >= 0) {
        // As Plasma 6 has it, and Plasma 5.
        run(QStringLiteral("/Scripting/Script%1").arg(number), QStringLiteral("/%1").arg(number));
    } else if (++attempts_ < mostAttempts) {
        retry_.start();
    } else {
        call(scriptingPath, scriptingInterface, "unloadScript", {scriptName},
             [](const QDBusMessage&) {});
        update(MarksState::failed, true);
    }
}

void KWinScript::run(const QString& path, const QString& otherwise) {
    call(path, QStringLiteral("org.kde.kwin.Script"), "run", {},
         [this, otherwise](const QDBusMessage& answer) {
             if (answer.type() == QDBusMessage::ErrorMessage && !otherwise.isEmpty()) {
                 tellsPad_ = QDBusError(answer).type() != QDBusError::UnknownObject;
                 run(otherwise, {});
             } else {
                 QTimer::singleShot(numberCheck, this, &KWinScript::runWithoutNumber);
             }
         });
}

// KWin numbers a script by how many there are, so that another may have that number already. This
// runs all that do not run yet.
void KWinScript::runWithoutNumber() {
    if (state_ != MarksState::available) {
        call(scriptingPath, scriptingInterface, "start", {}, [](const QDBusMessage&) {});
    }
}

// KWin drops effects when it starts to draw anew, as after a fault of the graphics.
void KWinScript::lookAfterEffect() {
    call(effectsPath, effectsInterface, "isEffectLoaded", {effectName},
         [this](const QDBusMessage& answer) {
             if (!valueIn(answer).toBool()) {
                 effectAttempts_ = 0;
                 // In place of an earlier version's, which would not fit this script.
                 offerToSession(dataFolder_, effectPlace);
                 loadEffect();
             }
         });
}

void KWinScript::loadEffect() {
    call(effectsPath, effectsInterface, "loadEffect", {effectName},
         [this](const QDBusMessage& answer) {
             const bool isLoaded = valueIn(answer).toBool();
             update(state_, isLoaded);
             if (!isLoaded && ++effectAttempts_ < mostEffectAttempts) {
                 effectRetry_.start();
             }
         });
}

QString KWinScript::introspect(const QString& /*path*/) const {
    return QStringLiteral("<interface name=\"org.vantrel.KWinMarks1\">"
                          "<method name=\"Next\"><arg type=\"i\" direction=\"in\"/>"
                          "<arg type=\"i\" direction=\"out\"/><arg type=\"s\" direction=\"out\"/>"
                          "</method><method name=\"SetScales\"><arg type=\"av\" direction=\"in\"/>"
                          "</method></interface>");
}

bool KWinScript::handleMessage(const QDBusMessage& message, const QDBusConnection& /*connection*/) {
    if (message.interface() != ownName) {
        return false;
    }
    if (message.service() != kwin_) {
        bus_.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("not KWin")));
    } else if (message.member() == QStringLiteral("Next")) {
        next(message);
    } else if (message.member() == QStringLiteral("SetScales")) {
        setScales(qdbus_cast<QVariantList>(message.arguments().value(0)));
        bus_.send(message.createReply());
    } else {
        return false;
    }
    return true;
}

void KWinScript::next(const QDBusMessage& message) {
    message.setDelayedReply(true);
    waiting_ = message;
    retry_.stop();
    hold_.start(longestHold);
    if (state_ != MarksState::available) {
        update(MarksState::available, true);
        lookAfterEffect();
    }
    if (message.arguments().value(0).toInt() != serial_) {
        answerNext();
    }
}

void KWinScript::answerNext() {
    if (const auto waiting = std::exchange(waiting_, std::nullopt)) {
        bus_.send(waiting->createReply({serial_, message_}));
        hold_.start(longestHold);
    }
}

// It asks at once for what comes next, if it is still there.
void KWinScript::checkScript() {
    if (waiting_) {
        answerNext();
        if (seesPresses_) {
            lookAfterEffect();
        }
    } else {
        update(MarksState::failed, true);
        attempts_ = 0;
        load();
    }
}

void KWinScript::setScales(const QVariantList& scales) {
    std::vector<double> sound;
    for (const auto& scale : scales) {
        if (const double value = scale.toDouble(); value >= 0.5 && value <= 8) {
            sound.push_back(value);
        }
    }
    std::ranges::sort(sound);
    sound.erase(std::unique(sound.begin(), sound.end()), sound.end());
    if (!sound.empty() && sound != scales_) {
        scales_ = sound;
        renewMessage();
    }
}

void KWinScript::show(const Effect& effect) {
    if (!seesPresses_ && !effectRetry_.isActive()) {
        loadEffect();
    }
    if (effect_ != effect) {
        effect_ = effect;
        renewMessage();
    }
}

void KWinScript::clear() {
    if (std::exchange(effect_, std::nullopt)) {
        renewMessage();
    }
}

void KWinScript::renewMessage() {
    message_ = effect_ ? scriptMessage(*effect_, scales_, paint_) : QStringLiteral("{}");
    ++serial_;
    answerNext();
}

void KWinScript::call(const QString& path, const QString& interface, const char* method,
                      const QVariantList& arguments,
                      std::function<void(const QDBusMessage&)> answered) {
    callAsync(bus_, callOf(kwin_, path, interface, QString::fromLatin1(method), arguments), this,
              [this, asked = kwin_, answered = std::move(answered)](const QDBusMessage& answer) {
                  if (asked == kwin_) {
                      answered(answer);
                  }
              });
}

} // namespace vantrel
