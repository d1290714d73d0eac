// SPDX-License-Identifier: MIT
#include "cli/output.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "foundation/local_path.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::localPath;

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
        const QFileInfo info(localPath(input));
        name = info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
    }
    // Bytes that are no text in the input's name become U+FFFD.
    const QList<uint> characters = name.toUcs4();
    name =
        QString::fromUcs4(reinterpret_cast<const char32_t*>(characters.data()), characters.size());
    QString unique = name;
    for (int number = 2; taken_.contains(unique); ++number)
        unique = name + u'-' + QString::number(number);
    taken_.insert(unique);
    return unique + u'.' + extension;
}

void writeFile(const QString& path, bool replacesExisting,
               const std::function<void(QIODevice&)>& write) {
    const QFileInfo target(localPath(path));
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

}  // namespace vell
