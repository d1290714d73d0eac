// SPDX-License-Identifier: MIT
#include "app/search/saved_search.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QMimeDatabase>
#include <QStandardPaths>
#include <QUrl>

#include "toolkit/console.h"

namespace vell {
namespace {

const QString fileName = QStringLiteral("Finder-Find-iChat-Files.savedSearch");

}  // namespace

// Installed files are in PREFIX/share/vell beside PREFIX/bin, those of a build beside the program.
const std::optional<QString>& searchQueryPath() {
    static const std::optional<QString> path = []() -> std::optional<QString> {
        const QDir programs(QCoreApplication::applicationDirPath());
        for (const char* folder : {"../share/vell", "../Resources", "."}) {
            const QString candidate =
                QDir(programs.filePath(QLatin1String(folder))).filePath(fileName);
            if (QFile::exists(candidate)) return QDir::cleanPath(candidate);
        }
        return std::nullopt;
    }();
    return path;
}

bool openSavedSearch() {
    if (!searchQueryPath()) {
        console::error("Missing search query?!");
        return false;
    }
#ifdef Q_OS_MACOS
    return QDesktopServices::openUrl(QUrl::fromLocalFile(*searchQueryPath()));
#else
    // No desktop here knows the format; a text editor would open it and show markup.
    return false;
#endif
}

}  // namespace vell
