// SPDX-License-Identifier: MIT
#include "app/desktop/file_drops.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

#include "foundation/local_path.h"

namespace vell {
namespace {

QStringList localFiles(const QMimeData& data) {
    QStringList paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) paths.append(foundation::pathFromUrl(url));
    }
    return paths;
}

void markTarget(QObject* object, bool isTarget) {
    if (const auto* widget = qobject_cast<QWidget*>(object))
        widget->window()->setProperty(isDropTargetProperty, isTarget);
}

}  // namespace

FileDrops::FileDrops(QObject* parent) : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool FileDrops::eventFilter(QObject* object, QEvent* event) {
    switch (event->type()) {
        case QEvent::Show: {
            auto* widget = qobject_cast<QWidget*>(object);
            if (widget &&
                (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog))
                widget->setAcceptDrops(true);
            return false;
        }
        case QEvent::DragEnter:
        case QEvent::DragMove:
            return object->isWidgetType() && take(*object, *static_cast<QDropEvent*>(event), false);
        case QEvent::DragLeave:
            markTarget(object, false);
            return false;
        case QEvent::Drop:
            return object->isWidgetType() && take(*object, *static_cast<QDropEvent*>(event), true);
        default:
            return false;
    }
}

bool FileDrops::take(QObject& object, QDropEvent& event, bool isDropped) {
    // Reading the address of a picture dragged from our own window would write it to a file.
    if (event.source()) return false;
    const QStringList files = localFiles(*event.mimeData());
    if (files.isEmpty()) return false;
    event.acceptProposedAction();
    markTarget(&object, !isDropped);
    if (isDropped) Q_EMIT dropped(files, static_cast<QWidget&>(object).window());
    return true;
}

}  // namespace vell
