#pragma once
// SPDX-License-Identifier: MIT
//
// SingleInstance: a second start of the program hands its files to the one that runs already, over
// a socket of the same user on the same display. Both ends make sure of whom they speak to; where
// there is no folder that only the user can enter, every start runs on its own.

#include <QLocalServer>
#include <QObject>
#include <QStringList>

namespace vell {

class SingleInstance final : public QObject {
    Q_OBJECT

  public:
    explicit SingleInstance(QObject* parent = nullptr);

    /// Hands the files (absolute paths; none just asks for the front) to a running instance;
    /// answers whether one took them.
    [[nodiscard]] static bool handOver(const QStringList& paths);

    /// Becomes the instance that later starts hand over to, unless another one is that already.
    bool listen();

  Q_SIGNALS:
    /// A later start brought these files, or none.
    void received(const QStringList& paths);

  private:
    void accept();

    QLocalServer server_;
};

}  // namespace vell
