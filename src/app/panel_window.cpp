// SPDX-License-Identifier: MIT
#include "app/panel_window.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QSettings>
#include <QWindow>
#include <utility>

namespace vell {
namespace {

QString frameKey(const QString& name) {
    return QStringLiteral("Frame/") + name;
}

}  // namespace

PanelWindow::PanelWindow(QString frameName, QSize contentSize)
    : QWidget(nullptr, Qt::Window), frameName_(std::move(frameName)) {
    resize(contentSize);
    if (restoreGeometry(QSettings().value(frameKey(frameName_)).toByteArray())) return;
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        move(screen->availableGeometry().center() - rect().center());
    }
}

void PanelWindow::mousePressEvent(QMouseEvent* event) {
    QWindow* window = windowHandle();
    if (event->button() == Qt::LeftButton && window && window->startSystemMove()) {
        event->accept();
        return;
    }
    QWidget::mousePressEvent(event);
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    QSettings().setValue(frameKey(frameName_), saveGeometry());
    QWidget::closeEvent(event);
}

}  // namespace vell
