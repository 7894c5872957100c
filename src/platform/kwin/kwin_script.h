#pragma once

#include "platform/marks.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QImage>
#include <QString>
#include <QTimer>

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace vantrel {

// The program's side of what it runs in KWin: a script that shows the marks, and an effect that
// hears of presses. Nothing waits for KWin. Both are loaded each time that KWin comes, and go by
// themselves with the program, however it ends.
class KWinScript final : public QDBusVirtualObject, public Marks {
    Q_OBJECT

public:
    // The discs of an effect in the middle of a square picture with so many points a side.
    using Paint = std::function<QImage(const Effect& effect, int side, double pixelsPerPoint)>;

    // Of the session's bus. The folder is that of the installation which has the script in
    // vantrel/kwin and the effect in kwin/effects; the user's own gets a copy of the effect if KWin
    // does not look there.
    KWinScript(QDBusConnection bus, std::filesystem::path dataFolder, Paint paint);
    ~KWinScript() override;
    KWinScript(const KWinScript&) = delete;
    KWinScript& operator=(const KWinScript&) = delete;

    [[nodiscard]] MarksState state() const override { return state_; }
    [[nodiscard]] std::string_view drawer() const override { return "kwin"; }
    // Also as long as that is not known.
    [[nodiscard]] bool seesPresses() const override { return seesPresses_; }
    // Whether this KWin knows keys of the numeric pad from others.
    [[nodiscard]] bool tellsPad() const { return tellsPad_; }
    [[nodiscard]] Subscription onChange(std::function<void()> callback) override;
    void show(const Effect& effect) override;
    void clear() override;
    void enable() override {}

    // Calls of the script.
    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    Q_SLOT void nameAcquired(const QString& name);
    Q_SLOT void loseBus() { setKWin({}); }

    void setKWin(const QString& owner);
    void takeName();
    void load();
    void takeNumber(int number);
    void run(const QString& path, const QString& otherwise);
    void runWithoutNumber();
    void lookAfterEffect();
    void loadEffect();
    void next(const QDBusMessage& message);
    void setScales(const QVariantList& scales);
    void answerNext();
    void checkScript();
    void renewMessage();
    void update(MarksState state, bool seesPresses);
    void call(const QString& path, const QString& interface, const char* method,
              const QVariantList& arguments, std::function<void(const QDBusMessage&)> answered);

    QDBusConnection bus_;
    std::filesystem::path dataFolder_;
    Paint paint_;
    QString kwin_; // its unique name while it is there
    MarksState state_ = MarksState::none;
    bool seesPresses_ = true;
    bool tellsPad_ = true;          // as Plasma 6 does
    std::vector<double> scales_{1}; // of the displays, pixels for each point
    std::optional<Effect> effect_;
    QString message_ = QStringLiteral("{}"); // for the script
    int serial_ = 1;                         // of the message
    std::optional<QDBusMessage> waiting_;    // the call that is held open
    QTimer hold_;                            // until it is answered, or should have come
    QTimer retry_;
    int attempts_ = 0; // at loading the script
    QTimer effectRetry_;
    int effectAttempts_ = 0;
    Observers<> changes_;
};

} // namespace vantrel
