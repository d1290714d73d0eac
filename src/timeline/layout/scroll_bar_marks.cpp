// SPDX-License-Identifier: MIT
#include "timeline/layout/scroll_bar_marks.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>
#include <algorithm>
#include <cmath>

#include "timeline/layout/timeline_layout.h"
#include "timeline/rows/row_text.h"

namespace vell {
namespace {

constexpr int markHeight = 2;
constexpr int currentHeight = 4;
constexpr int sideMargin = 3;
// Marks move when heights have become known that change the content's by more than one part in so
// many.
constexpr qint64 tolerance = 500;

constexpr QColor markColor(234, 160, 0);
constexpr QColor currentColor(214, 84, 0);

QRect part(const QScrollBar& bar, QStyle::SubControl which) {
    QStyleOptionSlider option;
    option.initFrom(&bar);
    option.orientation = Qt::Vertical;
    option.minimum = bar.minimum();
    option.maximum = bar.maximum();
    option.pageStep = bar.pageStep();
    option.singleStep = bar.singleStep();
    option.sliderPosition = option.sliderValue = bar.minimum();
    option.subControls = QStyle::SC_All;
    return bar.style()->subControlRect(QStyle::CC_ScrollBar, &option, which, &bar);
}

}  // namespace

ScrollBarMarks::ScrollBarMarks(QScrollBar& bar, const TimelineLayout& layout,
                               const RowContext& context)
    : QWidget(&bar), bar_(bar), layout_(layout), context_(context) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    bar.installEventFilter(this);
}

void ScrollBarMarks::setMatches(std::shared_ptr<const FoundSpans> matches, qsizetype current) {
    matches_ = std::move(matches);
    current_ = current;
    content_ = -1;
    setGeometry(bar_.rect());
    setVisible(matches_ && !matches_->isEmpty());
    update();
}

bool ScrollBarMarks::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        content_ = -1;
        setGeometry(bar_.rect());
    }
    return QWidget::eventFilter(object, event);
}

qsizetype ScrollBarMarks::length(qsizetype row) const {
    return selectableLength(layout_.chatlog().event(row));
}

double ScrollBarMarks::yOf(const TextPosition& position) const {
    const auto top = static_cast<double>(layout_.rowOffset(position.row));
    const auto height = static_cast<double>(layout_.rowOffset(position.row + 1)) - top;
    const auto units = static_cast<double>(length(position.row));
    const double within =
        units > 0 ? height * static_cast<double>(position.offset) / (units + 1) : 0;
    return first_ + (top + within) * scale_;
}

TextPosition ScrollBarMarks::positionAt(double y) const {
    const double offset = std::max((y - first_) / scale_, 0.0);
    const qsizetype row = layout_.rowAtOffset(static_cast<qint64>(offset));
    const auto top = static_cast<double>(layout_.rowOffset(row));
    const auto height = static_cast<double>(layout_.rowOffset(row + 1)) - top;
    const auto units = static_cast<double>(length(row));
    const double within = height > 0 ? (offset - top) / height * (units + 1) : 0;
    return {row, static_cast<qsizetype>(std::ceil(within))};
}

void ScrollBarMarks::place() {
    content_ = layout_.contentHeight();
    marks_.clear();
    const QRect groove = part(bar_, QStyle::SC_ScrollBarGroove);
    const QRect slider = part(bar_, QStyle::SC_ScrollBarSlider);
    const auto content = static_cast<double>(content_);
    const auto viewport = static_cast<double>(layout_.viewportHeight());
    if (content <= 0) return;
    scale_ = content > viewport ? (groove.height() - slider.height()) / (content - viewport)
                                : groove.height() / content;
    first_ = content > viewport ? groove.top() + slider.height() / 2.0 - viewport / 2 * scale_
                                : groove.top();
    for (qsizetype i = 0; i < matches_->size();) {
        const auto y = static_cast<int>(std::floor(yOf((*matches_)[i].from)));
        if (marks_.empty() || marks_.back() != y) marks_.push_back(y);
        // On to the first that is at least a pixel further down.
        i = std::max(i + 1, matches_->firstAt(positionAt(y + 1)));
    }
}

void ScrollBarMarks::paintEvent(QPaintEvent*) {
    if (!matches_ || layout_.rowCount() == 0) return;
    const qint64 content = layout_.contentHeight();
    if (content_ < 0 || std::abs(content - content_) > content / tolerance) place();
    QPainter painter(this);
    const QRect area = rect().adjusted(sideMargin, 0, -sideMargin, 0);
    for (const int y : marks_)
        painter.fillRect(QRect(area.left(), y, area.width(), markHeight), markColor);
    if (current_ < 0 || current_ >= matches_->size()) return;
    const auto y = static_cast<int>(std::floor(yOf((*matches_)[current_].from)));
    painter.fillRect(QRect(0, y - 1, width(), currentHeight), currentColor);
}

}  // namespace vell
