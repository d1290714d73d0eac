// SPDX-License-Identifier: MIT
//
// Windows to compare a start with: one with nothing in it at all, or with "furnished" one that has
// the texts that any main window has.
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(520, 720);
    if (QCoreApplication::arguments().value(1) == QStringLiteral("furnished")) {
        for (const char* title : {"File", "Edit", "View", "Help"})
            window.menuBar()->addMenu(QString::fromLatin1(title));
        window.addToolBar(QStringLiteral("Toolbar"))->addAction(QStringLiteral("Copy"));
        window.statusBar();
    }
    window.show();
    return QApplication::exec();
}
