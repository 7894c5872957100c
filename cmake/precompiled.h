// What most sources include, read once for each library. Only where CMake is told so: a source that
// lacks an include would go unnoticed everywhere otherwise.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#ifdef QT_CORE_LIB
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariant>
#endif
#ifdef QT_GUI_LIB
#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#endif
#ifdef QT_WIDGETS_LIB
#include <QApplication>
#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>
#endif
#ifdef QT_DBUS_LIB
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#endif
