#pragma once
// SPDX-License-Identifier: MIT
//
// FileDrops: lets every window of the program take files that are dropped on it from others,
// wherever in it they land. What is dragged out of our own windows is left alone.

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
