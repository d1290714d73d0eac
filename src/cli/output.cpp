// SPDX-License-Identifier: MIT
#include "cli/output.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vell {

using namespace Qt::StringLiterals;

namespace {

/// A file that no other has: its name says whose it is, should the program be killed.
void openTemporary(QFile& file, const QString& folder) {
    const QString stem =
        folder + u"/.vell-export-"_s + QString::number(QCoreApplication::applicationPid()) + u'-';
    for (int attempt = 0; attempt < 100; ++attempt) {
        file.setFileName(stem + QString::number(attempt));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return;
        if (!file.exists()) break;
    }
    throw WriteError{file.errorString()};
}

/// Gives the temporary file its name. Nothing in between sees neither or half of it.
void moveInto(QFile& temporary, const QString& path, bool replacesExisting) {
    if (!replacesExisting) {
        if (!temporary.rename(path)) throw WriteError{u"the file exists"_s};
        return;
    }
    if (std::rename(QFile::encodeName(temporary.fileName()).constData(),
                    QFile::encodeName(path).constData()) != 0)
        throw WriteError{QString::fromLocal8Bit(std::strerror(errno))};
}

}  // namespace

QString OutputNames::nameFor(const QString& input, const QString& extension) {
    QString name = u"stdin"_s;
    if (input != u"-") {
        const QFileInfo info(filePath(input));
        name = info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
    }
    QString unique = name;
    for (int number = 2; taken_.contains(unique); ++number)
        unique = name + u'-' + QString::number(number);
    taken_.insert(unique);
    return unique + u'.' + extension;
}

void writeFile(const QString& path, bool replacesExisting,
               const std::function<void(QIODevice&)>& write) {
    const QFileInfo target(filePath(path));
    const bool isThere = target.exists() || target.isSymLink();
    if (isThere && !replacesExisting) throw WriteError{u"the file exists (--force replaces it)"_s};
    if (target.exists() && !target.isFile()) throw WriteError{u"it is no regular file"_s};

    QFile temporary;
    openTemporary(temporary, target.absolutePath());
    try {
        write(temporary);
        if (!temporary.flush() || temporary.error() != QFileDevice::NoError)
            throw WriteError{temporary.errorString()};
        temporary.close();
        moveInto(temporary, target.absoluteFilePath(), replacesExisting);
    } catch (...) {
        temporary.remove();
        throw;
    }
}

bool isSameFile(const QString& a, const QString& b) {
    const QString first = QFileInfo(filePath(a)).canonicalFilePath();
    return !first.isEmpty() && first == QFileInfo(filePath(b)).canonicalFilePath();
}

QString filePath(const QString& path) {
    return path.startsWith(u':') ? QDir::currentPath() + u'/' + path : path;
}

}  // namespace vell
