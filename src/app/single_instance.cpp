// SPDX-License-Identifier: MIT
#include "app/single_instance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <cstring>
#include <optional>

namespace vell {
namespace {

constexpr int patience = 2000;               // milliseconds
constexpr int answerPatience = 20000;        // for one that is there, but busy opening files
constexpr qint64 largestRequest = 16 << 20;  // bytes; longer than any command line
const QByteArray answer("\x06");             // that the files arrived whole

// A request: the paths in UTF-16 as they are in memory, each with a zero behind it, and one zero
// more. No count is told that would have to be believed.
QByteArray encoded(const QStringList& paths) {
    QString request;
    for (const QString& path : paths)
        request += path + QChar(u'\0');
    request += QChar(u'\0');
    return {reinterpret_cast<const char*>(request.utf16()), request.size() * 2};
}

/// Nothing while the request isn't complete.
std::optional<QStringList> decoded(const QByteArray& bytes) {
    if (bytes.size() % 2 != 0) return std::nullopt;
    QString request(bytes.size() / 2, Qt::Uninitialized);
    std::memcpy(request.data(), bytes.constData(), static_cast<size_t>(bytes.size()));
    if (request == QStringView(u"\0", 1)) return QStringList();
    if (!request.endsWith(QStringView(u"\0\0", 2))) return std::nullopt;
    request.chop(2);
    return request.split(QChar(u'\0'));
}

/// One socket for each user and display, in the user's own run-time folder where there is one.
QString socketPath() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
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
    QLocalSocket socket;
    socket.connectToServer(socketPath());
    if (!socket.waitForConnected(patience)) return false;
    socket.write(encoded(paths));
    socket.flush();
    return socket.waitForReadyRead(answerPatience) && socket.read(answer.size()) == answer;
}

bool SingleInstance::listen() {
    // Listening takes the socket from whoever has it, so nobody may come in between.
    QLockFile lock(socketPath() + QStringLiteral(".lock"));
    if (!lock.tryLock(patience)) return false;
    QLocalSocket other;
    other.connectToServer(socketPath());
    if (other.waitForConnected(patience)) return false;
    QLocalServer::removeServer(socketPath());
    return server_.listen(socketPath());
}

void SingleInstance::accept() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (socket->bytesAvailable() > largestRequest) {
                socket->abort();
                return;
            }
            const auto paths = decoded(socket->peek(largestRequest));
            if (!paths) return;
            socket->disconnect(this);
            socket->write(answer);
            socket->flush();
            Q_EMIT received(*paths);
        });
    }
}

}  // namespace vell
