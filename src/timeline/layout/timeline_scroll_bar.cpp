// SPDX-License-Identifier: MIT
#include "timeline/layout/timeline_scroll_bar.h"

#include <QStyle>
#include <QStyleOptionSlider>

namespace vell {

TimelineScrollBar::Look TimelineScrollBar::look() const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    return {
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this),
        value() == minimum(), value() == maximum()};
}

void TimelineScrollBar::paintEvent(QPaintEvent* event) {
    QScrollBar::paintEvent(event);
    painted_ = look();
}

void TimelineScrollBar::sliderChange(SliderChange change) {
    if (look() != painted_) QScrollBar::sliderChange(change);
}

}  // namespace vell
