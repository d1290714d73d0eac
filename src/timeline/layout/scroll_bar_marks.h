#pragma once
// SPDX-License-Identifier: MIT
//
// ScrollBarMarks: marks on a timeline's scroll bar where a search has found something. At most one
// for each pixel, so that a million matches cost no more than some hundred.

#include <QWidget>
#include <memory>
#include <vector>

#include "timeline/text/found_spans.h"

class QScrollBar;

namespace vell {

class TimelineLayout;
struct RowContext;

class ScrollBarMarks final : public QWidget {
    Q_OBJECT

  public:
    /// Lies over the bar, which owns it. The others must outlive it.
    ScrollBarMarks(QScrollBar& bar, const TimelineLayout& layout, const RowContext& context);

    /// `current` is the index of the match to stand out, -1 for none.
    void setMatches(std::shared_ptr<const FoundSpans> matches, qsizetype current);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void place();
    [[nodiscard]] qsizetype length(qsizetype row) const;
    [[nodiscard]] double yOf(const TextPosition& position) const;
    [[nodiscard]] TextPosition positionAt(double y) const;

    QScrollBar& bar_;
    const TimelineLayout& layout_;
    const RowContext& context_;
    std::shared_ptr<const FoundSpans> matches_;
    qsizetype current_ = -1;

    // Where the marks are, and what that was found for.
    std::vector<int> marks_;
    qint64 content_ = -1;
    // A match is marked where the slider's middle is while the match is in the window's.
    double first_ = 0;  // where the content's top is marked
    double scale_ = 0;  // points of the groove for each pixel of the content
};

}  // namespace vell
