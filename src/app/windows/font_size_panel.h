#pragma once
// SPDX-License-Identifier: MIT
//
// FontSizePanel: what "Show Fonts" opens. The timeline's family and style are the desktop's, so
// that only the size is offered.

#include <QDialog>

class QDoubleSpinBox;
class QListWidget;

namespace vell {

class FontSizePanel final : public QDialog {
    Q_OBJECT

  public:
    explicit FontSizePanel(QWidget* parent);

    /// Shows a size without reporting it; one that the panel doesn't offer as the nearest.
    void setSize(qint64 points);

  Q_SIGNALS:
    void sizeChosen(double points);

  private:
    void selectInList(double points);

    QDoubleSpinBox* edit_;
    QListWidget* list_;
};

}  // namespace vell
