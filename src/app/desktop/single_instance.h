#pragma once
// SPDX-License-Identifier: MIT
//
// SingleInstance: a second start of the program hands its files to the running one, over a socket
// for the same user and display. Both ends check the user at the other end; without a folder that
// only the user can enter, every start runs on its own.

#include <QLocalServer>
#include <QObject>
#include <QStringList>

namespace vell {

class SingleInstance final : public QObject {
    Q_OBJECT

  public:
    explicit SingleInstance(QObject* parent = nullptr);

    /// Hands the files (absolute paths; none: it just comes to the front) to a running instance;
    /// returns whether one took them.
    [[nodiscard]] static bool handOver(const QStringList& paths);

    /// Becomes the instance that later starts hand over to, unless there is one already.
    bool listen();

  Q_SIGNALS:
    /// A later start brought these files, or none.
    void received(const QStringList& paths);

  private:
    void accept();

    QLocalServer server_;
};

}  // namespace vell
