#pragma once
// SPDX-License-Identifier: MIT
//
// ViewerButton: a round button over a picture. Its sign is drawn here, white on dark, so that it is
// the same with every icon theme.

#include <QAbstractButton>

namespace vell {

class ViewerButton final : public QAbstractButton {
    Q_OBJECT

  public:
    enum class Sign { left, right, close, copy, save };

    /// The text is its tool tip and its name.
    ViewerButton(Sign sign, const QString& text, QWidget* parent);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Sign sign_;
};

}  // namespace vell
