#pragma once
// SPDX-License-Identifier: MIT
//
// PanelWindow: a small window that is moved by dragging its background and remembers its frame
// under a name, the base of the About and load-log windows.

#include <QWidget>
#include <optional>

namespace vell {

class PanelWindow : public QWidget {
    Q_OBJECT

  public:
    enum class Sizing { fixed, resizable };

    /// The frame is kept in the settings under the name; several windows may share one.
    PanelWindow(QString frameName, QSize contentSize, Sizing sizing);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    QString frameName_;
    std::optional<QPoint> pressedAt_;
};

}  // namespace vell
