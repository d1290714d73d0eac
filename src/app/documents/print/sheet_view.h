#pragma once
// SPDX-License-Identifier: MIT
//
// SheetView: a picture of a page on a ground, as large as there is room.

#include <QImage>
#include <QSizeF>
#include <QWidget>

namespace vell {

class SheetView final : public QWidget {
    Q_OBJECT

  public:
    /// The sheet's size is that of the paper, in points.
    explicit SheetView(QSizeF sheet);

    void setPicture(const QImage& picture);
    /// Pixels a point of the paper.
    [[nodiscard]] qreal scale() const;
    [[nodiscard]] QSize sizeHint() const override;

  Q_SIGNALS:
    void resized();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    [[nodiscard]] QRectF place() const;

    QSizeF sheet_;
    QImage picture_;
};

}  // namespace vell
