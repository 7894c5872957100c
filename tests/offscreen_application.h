#pragma once

#include <QApplication>
#include <QString>

#include <gtest/gtest.h>

#include <memory>

namespace vantrel {

// A toolkit without a display, for all tests of a program. Its warnings fail them.
class OffscreenApplication : public ::testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        previous_ = qInstallMessageHandler(report);
        application_ = std::make_unique<QApplication>(argc_, argv_);
        QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false);
    }
    void TearDown() override {
        application_.reset();
        qInstallMessageHandler(previous_);
    }

private:
    static void report(QtMsgType type, const QMessageLogContext& /*context*/,
                       const QString& message) {
        const bool ofThePlugin =
            message.startsWith(QStringLiteral("This plugin does not support")) ||
            message.contains(QStringLiteral("XDG_RUNTIME_DIR"));
        if (type != QtDebugMsg && type != QtInfoMsg && !ofThePlugin) {
            ADD_FAILURE() << message.toStdString();
        }
    }

    int argc_ = 1;
    char name_[5] = "test";
    char* argv_[2] = {name_, nullptr};
    QtMessageHandler previous_ = nullptr;
    std::unique_ptr<QApplication> application_;
};

inline const auto* const offscreenApplication =
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);

} // namespace vantrel
