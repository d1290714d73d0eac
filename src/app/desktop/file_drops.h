#pragma once
// SPDX-License-Identifier: MIT
//
// FileDrops: lets every window of the program accept files dropped from other programs anywhere in
// it. Drags from our own windows are ignored. A window above which files are held has the property
// `isDropTargetProperty`.

#include <QObject>
#include <QStringList>

class QDropEvent;
class QWidget;

namespace vell {

inline constexpr const char* isDropTargetProperty = "isDropTarget";

class FileDrops final : public QObject {
    Q_OBJECT

  public:
    explicit FileDrops(QObject* parent = nullptr);

    bool eventFilter(QObject* object, QEvent* event) override;

  Q_SIGNALS:
    void dropped(const QStringList& paths, const QWidget* window);

  private:
    bool take(QObject& object, QDropEvent& event, bool isDropped);
};

}  // namespace vell
