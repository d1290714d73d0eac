#pragma once
// SPDX-License-Identifier: MIT
//
// BarChart: upright or lying bars with their labels; exact figures as tool tips and for assistive
// technology.

#include <QWidget>
#include <vector>

namespace vell {

class BarChart final : public QWidget {
    Q_OBJECT

  public:
    struct Bar {
        QString label;
        qint64 value = 0;
        QString details;  ///< "2009: 1,204 messages"
    };
    enum class Shape { columns, rows };

    BarChart(const QString& title, Shape shape, QWidget* parent = nullptr);

    void setBars(std::vector<Bar> bars);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    /// Of a bar with its label.
    [[nodiscard]] QRect slot(std::size_t bar) const;
    void paintColumn(QPainter& painter, std::size_t bar) const;
    void paintRow(QPainter& painter, std::size_t bar) const;
    [[nodiscard]] bool showsLabel(std::size_t bar) const;
    [[nodiscard]] int labelWidth() const;
    [[nodiscard]] QColor labelColor() const;

    const Shape shape_;
    std::vector<Bar> bars_;
    qint64 most_ = 0;
};

}  // namespace vell
