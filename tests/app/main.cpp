// SPDX-License-Identifier: MIT
//
// Windows need an application object, and settings a place of their own.
#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir home;
    for (const char* variable :
         {"XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "HOME"})
        qputenv(variable, home.path().toUtf8());
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");  // nobody's own address book
    qputenv("TZ", "UTC");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vell-tests"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("quillmark.dev"));
    return RUN_ALL_TESTS();
}
