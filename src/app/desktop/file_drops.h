#pragma once
// SPDX-License-Identifier: MIT
//
// FileDrops: lets every window of the program accept files dropped from other programs anywhere in
// it. Drags from our own windows are ignored.

#include <QObject>
#include <QStringList>

class QDropEvent;

namespace vell {

class FileDrops final : public QObject {
    Q_OBJECT

  public:
    explicit FileDrops(QObject* parent = nullptr);

    bool eventFilter(QObject* object, QEvent* event) override;

  Q_SIGNALS:
    void dropped(const QStringList& paths);

  private:
    bool take(QDropEvent& event, bool isDropped);
};

}  // namespace vell
