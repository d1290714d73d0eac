// SPDX-License-Identifier: MIT
#include "app/windows/panel_window.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QSettings>
#include <QWindow>
#include <utility>

#include "app/windows/common_commands.h"
#include "app/windows/window_geometry.h"

namespace vell {
namespace {

QString frameKey(const QString& name) {
    return QStringLiteral("Frame/") + name;
}

}  // namespace

PanelWindow::PanelWindow(QString frameName, QSize contentSize, Sizing sizing)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      frameName_(std::move(frameName)) {
    addClosingShortcuts(*this);
    resize(contentSize);
    if (sizing == Sizing::fixed) setFixedSize(contentSize);
    if (restoreWindow(*this, QSettings().value(frameKey(frameName_)).toByteArray())) return;
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
