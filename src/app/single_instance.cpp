// SPDX-License-Identifier: MIT
#include "app/single_instance.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>

namespace vell {
namespace {

constexpr int patience = 2000;               // milliseconds
constexpr qint64 largestRequest = 16 << 20;  // bytes; longer than any command line
constexpr auto streamVersion = QDataStream::Qt_6_4;

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
    QDataStream stream(&socket);
    stream.setVersion(streamVersion);
    stream << paths;
    socket.flush();
    // The answer tells that the files arrived whole.
    return socket.waitForReadyRead(patience) && socket.read(1) == QByteArray("\x06");
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
            QDataStream stream(socket);
            stream.setVersion(streamVersion);
            stream.startTransaction();
            QStringList paths;
            stream >> paths;
            if (!stream.commitTransaction()) return;
            socket->write("\x06", 1);
            socket->flush();
            Q_EMIT received(paths);
        });
    }
}

}  // namespace vell
