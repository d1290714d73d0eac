// SPDX-License-Identifier: MIT
#include "app/desktop/single_instance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <cstring>
#include <optional>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace vell {
namespace {

constexpr int connectTimeout = 2000;         // milliseconds
constexpr int replyTimeout = 20000;          // milliseconds; it may be busy opening files
constexpr qint64 largestRequest = 16 << 20;  // bytes; longer than any command line
const QByteArray acknowledgement("\x06");    // all files have arrived

// A request: the paths in UTF-16 in native byte order, each terminated by a zero, and a final zero.
// There is no count that would have to be trusted.
QByteArray encoded(const QStringList& paths) {
    QString request;
    for (const QString& path : paths)
        request += path + QChar(u'\0');
    request += QChar(u'\0');
    return {reinterpret_cast<const char*>(request.utf16()), request.size() * 2};
}

/// Nothing until the request is complete.
std::optional<QStringList> decoded(const QByteArray& bytes) {
    if (bytes.size() % 2 != 0) return std::nullopt;
    QString request(bytes.size() / 2, Qt::Uninitialized);
    std::memcpy(request.data(), bytes.constData(), static_cast<size_t>(bytes.size()));
    if (request == QStringView(u"\0", 1)) return QStringList();
    if (!request.endsWith(QStringView(u"\0\0", 2))) return std::nullopt;
    request.chop(2);
    return request.split(QChar(u'\0'));
}

#ifdef Q_OS_UNIX
bool isPrivate(const QString& folder) {
    struct stat status {};
    return ::lstat(QFile::encodeName(folder).constData(), &status) == 0 &&
           S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & 0777) == 0700;
}

/// Whether the process at the other end is the same user's.
bool isOurs(const QLocalSocket& socket) {
    const auto descriptor = static_cast<int>(socket.socketDescriptor());
#ifdef SO_PEERCRED
    struct ucred peer {};
    socklen_t size = sizeof peer;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(descriptor, &user, &group) == 0 && user == ::geteuid();
#endif
}
#else
// Named pipes belong to the user there.
bool isPrivate(const QString& folder) {
    return !folder.isEmpty();
}
bool isOurs(const QLocalSocket&) {
    return true;
}
#endif

/// One socket for each user and display, in the user's runtime folder; nothing without such a
/// folder.
std::optional<QString> socketPath() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (!isPrivate(folder)) return std::nullopt;
    QByteArray session = qgetenv("WAYLAND_DISPLAY");
    if (session.isEmpty()) session = qgetenv("DISPLAY");
    session = QCryptographicHash::hash(session, QCryptographicHash::Sha1).toHex().left(12);
    return QDir(folder).filePath(QStringLiteral("dev.quillmark.vell-") +
                                 QString::fromLatin1(session));
}

}  // namespace

SingleInstance::SingleInstance(QObject* parent) : QObject(parent) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::accept);
}

bool SingleInstance::handOver(const QStringList& paths) {
    const auto path = socketPath();
    if (!path) return false;
    QLocalSocket socket;
    socket.connectToServer(*path);
    if (!socket.waitForConnected(connectTimeout) || !isOurs(socket)) return false;
    socket.write(encoded(paths));
    socket.flush();
    return socket.waitForReadyRead(replyTimeout) &&
           socket.read(acknowledgement.size()) == acknowledgement;
}

bool SingleInstance::listen() {
    const auto path = socketPath();
    if (!path) return false;
    // Listening replaces an existing socket, so no other start may do the same meanwhile.
    QLockFile lock(*path + QStringLiteral(".lock"));
    if (!lock.tryLock(connectTimeout)) return false;
    QLocalSocket other;
    other.connectToServer(*path);
    if (other.waitForConnected(connectTimeout)) return false;
    QLocalServer::removeServer(*path);
    return server_.listen(*path);
}

void SingleInstance::accept() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (!isOurs(*socket)) {
            socket->abort();
            continue;
        }
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (socket->bytesAvailable() > largestRequest) {
                socket->abort();
                return;
            }
            const auto paths = decoded(socket->peek(largestRequest));
            if (!paths) return;
            socket->disconnect(this);
            socket->write(acknowledgement);
            socket->flush();
            Q_EMIT received(*paths);
        });
    }
}

}  // namespace vell
