// SPDX-License-Identifier: MIT
#include "app/documents/dropped_files.h"

#include <QDir>
#include <QList>
#include <QUrl>

#include "app/documents/file_reader.h"

namespace vell {

QStringList droppedFiles(const QMimeData& data) {
    QStringList paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) paths.append(url.toLocalFile());
    }
    return paths;
}

QString argumentPath(const QString& argument, const QString& folder) {
    if (isStandardInput(argument)) return argument;
    if (argument.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        const QUrl url(argument);
        if (url.isLocalFile()) return QDir::cleanPath(url.toLocalFile());
    }
    return QDir::cleanPath(QDir(folder).absoluteFilePath(argument));
}

}  // namespace vell
