#pragma once

#include <QApplication>
#include <QFontInfo>
#include <QString>
#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <memory>

namespace vantrel {

// A toolkit without a display, for all tests of a program. Its warnings fail them. It has the same
// few fonts on every machine.
class OffscreenApplication : public ::testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        offerFonts();
        previous_ = qInstallMessageHandler(report);
        application_ = std::make_unique<QApplication>(argc_, argv_);
        useFont("DejaVu Sans");
        QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false);
    }
    void TearDown() override {
        application_.reset();
        qInstallMessageHandler(previous_);
    }

    static void useFont(const char* family, int points = 10) {
        const QFont font(QString::fromUtf8(family), points);
        ASSERT_EQ(QFontInfo(font).family(), font.family());
        QApplication::setFont(font);
    }

private:
    void offerFonts() {
        ASSERT_TRUE(fonts_.open());
        fonts_.write(R"(<?xml version="1.0"?>
            <!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
            <fontconfig>
              <dir>/usr/share/fonts</dir>
              <cachedir>/var/cache/fontconfig</cachedir>
              <cachedir prefix="xdg">fontconfig</cachedir>
              <selectfont>
                <rejectfont><pattern/></rejectfont>)");
        for (const char* family : {"DejaVu Sans", "Inter", "Noto Sans", "Noto Sans CJK SC"}) {
            fonts_.write("<acceptfont><pattern><patelt name='family'><string>");
            fonts_.write(family);
            fonts_.write("</string></patelt></pattern></acceptfont>");
        }
        fonts_.write("</selectfont></fontconfig>");
        fonts_.close();
        qputenv("FONTCONFIG_FILE", fonts_.fileName().toUtf8());
    }
    static void report(QtMsgType type, const QMessageLogContext& /*context*/,
                       const QString& message) {
        const bool ofThePlugin =
            message.startsWith(QStringLiteral("This plugin does not support")) ||
            message.contains(QStringLiteral("XDG_RUNTIME_DIR"));
        if (type != QtDebugMsg && type != QtInfoMsg && !ofThePlugin) {
            ADD_FAILURE() << message.toStdString();
        }
    }

    QTemporaryFile fonts_;
    int argc_ = 1;
    char name_[5] = "test";
    char* argv_[2] = {name_, nullptr};
    QtMessageHandler previous_ = nullptr;
    std::unique_ptr<QApplication> application_;
};

inline const auto* const offscreenApplication =
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);

} // namespace vantrel
