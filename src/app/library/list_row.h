#pragma once
// SPDX-License-Identifier: MIT
//
// ListRow: what rows of the library's lists have in common: a rounded selection, and texts in two
// lines that run from the row's start, with a shorter one at its end.

#include <QPainter>
#include <QStyleOptionViewItem>
#include <QTextLayout>

namespace vell {

class ListRow {
  public:
    static constexpr int margin = 12;  ///< points at both ends

    /// Paints the ground.
    ListRow(QPainter& painter, const QStyleOptionViewItem& option);
    ~ListRow();
    ListRow(const ListRow&) = delete;
    ListRow& operator=(const ListRow&) = delete;

    /// The height of a row of two lines.
    [[nodiscard]] static int height(const QFont& font, int leastContent = 0);
    /// Of a row of one.
    [[nodiscard]] static int singleHeight(const QFont& font);
    [[nodiscard]] static QFont smallFont(QFont font);

    /// Takes so much room from the start, which is on the right in right-to-left layouts.
    [[nodiscard]] QRect takeStart(int width);
    enum class Line { first, second, only };
    enum class Weight { normal, strong, faded };
    /// Writes at the end of a line and leaves less room for write().
    void writeEnd(Line line, const QString& text);
    void write(Line line, const QString& text, Weight weight,
               const QVector<QTextLayout::FormatRange>& formats = {});

    [[nodiscard]] QColor color(Weight weight) const;
    /// Whether the ground has the colour of the selection.
    [[nodiscard]] bool isHighlighted() const { return isHighlighted_; }

  private:
    [[nodiscard]] QRect place(Line line) const;
    [[nodiscard]] QFont font(Line line, Weight weight) const;

    QPainter& painter_;
    const QStyleOptionViewItem& option_;
    bool isHighlighted_;
    QColor text_;
    QRect room_;
    int firstEnd_ = 0;
    int secondEnd_ = 0;
};

}  // namespace vell
