// SPDX-License-Identifier: MIT
#include "app/windows/panel_window.h"

#include <QApplication>
#include <QCloseEvent>
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
    auto* escape = new QAction(this);
    escape->setShortcut(Qt::Key_Escape);
    connect(escape, &QAction::triggered, this, &QWidget::close);
    addAction(escape);
    resize(contentSize);
    if (sizing == Sizing::fixed) setFixedSize(contentSize);
    if (restoreWindow(*this, QSettings().value(frameKey(frameName_)).toByteArray())) return;
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        move(screen->availableGeometry().center() - rect().center());
    }
}

void PanelWindow::mousePressEvent(QMouseEvent* event) {
    pressedAt_ = event->globalPosition().toPoint();
}

// Not at the press: the desktop would take over the mouse, and a click would never end.
void PanelWindow::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() != Qt::LeftButton || !pressedAt_) return;
    const QPoint way = event->globalPosition().toPoint() - *pressedAt_;
    if (way.manhattanLength() < QApplication::startDragDistance()) return;
    pressedAt_.reset();  // asked for twice, the second move begins when the button is up again
    windowHandle()->startSystemMove();
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    QSettings().setValue(frameKey(frameName_), saveGeometry());
    QWidget::closeEvent(event);
}

}  // namespace vell
