// SPDX-License-Identifier: MIT
#include "foundation/local_path.h"

#include <fcntl.h>

#include <QDir>
#include <algorithm>
#include <optional>

namespace foundation {
namespace {

/// A byte above 0x7f is stored as this plus the byte.
constexpr char16_t escapeBase = 0xdc00;

bool isEscaped(char16_t unit) {
    return unit >= escapeBase + 0x80 && unit <= escapeBase + 0xff;
}

/// The bytes of a path that no Unicode text can name; nothing for all others.
std::optional<QByteArray> escapedBytes(const QString& path) {
    QByteArray result;
    bool hasEscape = false;
    qsizetype begin = 0;
    for (qsizetype i = 0; i < path.size(); ++i) {
        if (path[i].isHighSurrogate()) {
            ++i;
        } else if (isEscaped(path[i].unicode())) {
            result += QFile::encodeName(path.sliced(begin, i - begin));
            result += static_cast<char>(path[i].unicode() - escapeBase);
            begin = i + 1;
            hasEscape = true;
        }
    }
    if (!hasEscape) return std::nullopt;
    return result + QFile::encodeName(path.sliced(begin));
}

}  // namespace

QString pathFromArgument(const char* argument) {
    const QByteArrayView bytes(argument);
    if (bytes.isValidUtf8()) return QString::fromUtf8(bytes);
    QString result;
    for (qsizetype i = 0; i < bytes.size();) {
        const qsizetype most = std::min<qsizetype>(4, bytes.size() - i);
        qsizetype size = 1;
        while (size <= most && !bytes.sliced(i, size).isValidUtf8())
            ++size;
        if (size <= most) {
            result += QString::fromUtf8(bytes.sliced(i, size));
            i += size;
        } else {
            result += QChar(escapeBase + static_cast<unsigned char>(bytes[i++]));
        }
    }
    return result;
}

QString pathFromUrl(const QUrl& url) {
    return pathFromArgument(
        QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).constData());
}

QString storedPath(const QString& path) {
    const auto bytes = escapedBytes(path);
    if (!bytes) return path;
    return QStringLiteral("file://") + QString::fromLatin1(bytes->toPercentEncoding("/"));
}

QString pathFromStored(const QString& text) {
    return text.startsWith(QLatin1String("file://")) ? pathFromUrl(QUrl(text)) : text;
}

QString localPath(const QString& path) {
    return path.startsWith(u':') ? QDir::currentPath() + u'/' + path : path;
}

QByteArray pathBytes(const QString& path) {
    return escapedBytes(path).value_or(QFile::encodeName(path));
}

bool openForReading(QFile& file, const QString& path) {
    const auto bytes = escapedBytes(path);
    file.setFileName(localPath(path));
    if (!bytes) return file.open(QIODevice::ReadOnly);
    const int descriptor = ::open(bytes->constData(), O_RDONLY | O_CLOEXEC);
    return descriptor >= 0 ? file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle)
                           : file.open(QIODevice::ReadOnly);
}

}  // namespace foundation
