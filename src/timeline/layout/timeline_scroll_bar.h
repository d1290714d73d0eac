#pragma once
// SPDX-License-Identifier: MIT
//
// TimelineScrollBar: a scroll bar that is painted when it looks different. In a long log a notch
// changes the value but moves the slider by less than a point, and styles paint sliders slowly.

#include <QScrollBar>

namespace vell {

class TimelineScrollBar final : public QScrollBar {
    Q_OBJECT

  public:
    using QScrollBar::QScrollBar;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void sliderChange(SliderChange change) override;

  private:
    struct Look {
        QRect slider;
        bool isAtStart = false;  // some styles then fade an arrow
        bool isAtEnd = false;
        friend bool operator==(const Look&, const Look&) = default;
    };
    [[nodiscard]] Look look() const;

    Look painted_;
};

}  // namespace vell
