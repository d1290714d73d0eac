#pragma once
// SPDX-License-Identifier: MIT
//
// SharedView: pictures as a grid that fills the width, links and files as a list. What it shows
// costs what is on the screen, however much was shared.

#include <QTableView>

namespace vell {

class PictureCache;
class SharedItems;

class SharedView final : public QTableView {
    Q_OBJECT

  public:
    /// Owns the items.
    SharedView(SharedItems* items, PictureCache& pictures, const QString& whenEmpty);

    [[nodiscard]] SharedItems& items() { return *items_; }

  Q_SIGNALS:
    /// The row of the chat that was chosen, by a click or the return key.
    void chosen(qsizetype row);
    /// The row was clicked twice.
    void opened(qsizetype row);

  protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void arrange();

    SharedItems* items_;
    QString whenEmpty_;
};

}  // namespace vell
