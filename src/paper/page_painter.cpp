// SPDX-License-Identifier: MIT
#include "paper/page_painter.h"

#include <QFontMetricsF>
#include <QLocale>
#include <algorithm>
#include <type_traits>
#include <variant>

#include "timeline/rows/bubble_layout.h"
#include "timeline/text/laid_out_text.h"
#include "toolkit/date_formatters.h"
#include "toolkit/link_schemes.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

constexpr qreal belowHeading = 16;  // points of the layout
constexpr qreal aboveFoot = 16;
constexpr qreal dividerThickness = 1;
constexpr qreal pictureRadius = 16;
constexpr float fieldOpacity = 0.07f;

/// What a translucent colour is on white.
QColor onPaper(const QColor& color) {
    const float cover = color.alphaF();
    const auto mixed = [cover](float part) { return 1 - cover * (1 - part); };
    return QColor::fromRgbF(mixed(color.redF()), mixed(color.greenF()), mixed(color.blueF()));
}

/// Paints a row of each kind.
class RowPainterOnPaper {
  public:
    RowPainterOnPaper(PaperCanvas& canvas, PaperContext& context, const PaperRow& row, int top,
                      const TesselChatLog::Event& event)
        : canvas_(canvas), context_(context), row_(row), offset_(0, top), event_(event) {}

    void operator()(std::monostate) const {}
    void operator()(const PlainMessageBubbleView& view) const {
        const Style::Aqua aqua = bubble(view.owner);
        text(Style::textColor(aqua));
        if (const auto* link = std::get_if<TesselChatLog::Link>(&event_.value)) {
            const QString address = link->url->absoluteString();
            if (hasPlainScheme(address))
                canvas_.link(row_.layout.content.translated(offset_), address);
        }
    }
    void operator()(const SystemMessageView&) const { text(colors().secondaryLabel); }
    void operator()(const FileView&) const { text(colors().label); }
    void operator()(const SenderInfoView&) const { text(colors().label); }
    void operator()(const TimeSeparatorView&) const { text(colors().secondaryLabel); }
    void operator()(const ImageBubbleView& view) const {
        const Style::Aqua aqua = bubble(view.owner);
        const QRect room = row_.layout.content.translated(offset_);
        const qreal radius = pictureRadius * context_.rows().ratio;
        if (row_.layout.text) {
            text(Style::textColor(aqua));
        } else if (const QImage* image = context_.picture(view, room.size())) {
            canvas_.photo(room, *image, radius);
        } else {
            canvas_.fill(room, onPaper(colors().separator), radius);
        }
    }
    void operator()(const SessionHeadingView&) const {
        QColor field = colors().label;
        field.setAlphaF(fieldOpacity);
        const QRect frame = row_.layout.frame.translated(offset_);
        canvas_.fill(frame, onPaper(field), frame.height() / 2.0);
        text(colors().label);
    }
    void operator()(const DaySeparatorView&) const {
        const int thickness = std::max(1, context_.rows().px(dividerThickness));
        const QRect divider(0, (row_.layout.height - thickness) / 2, row_.layout.width, thickness);
        canvas_.fill(divider.translated(offset_), onPaper(colors().separator));
        canvas_.fill(row_.layout.frame.translated(offset_), colors().background);
        text(colors().secondaryLabel);
    }

  private:
    [[nodiscard]] const RowColors& colors() const { return context_.rows().colors; }

    Style::Aqua bubble(const BubbleOwner& owner) const {
        const Style::Aqua aqua = bubbleStyle(owner, context_.rows());
        canvas_.bubble(
            row_.layout.frame.translated(offset_), aqua,
            owner.isOwn ? ChatBubbleShape::Direction::right : ChatBubbleShape::Direction::left);
        if (owner.sender) {
            const QImage icon = context_.icon(*owner.sender);
            if (!icon.isNull()) canvas_.drawing(row_.layout.icon.translated(offset_), icon);
        }
        return aqua;
    }
    void text(const QColor& color) const {
        const QPoint corner = row_.layout.content.topLeft() + offset_;
        // A line touches its neighbours where there is no space between them.
        canvas_.text(*row_.layout.text, corner - QPoint(0, row_.textTop), row_.textTop + 1,
                     row_.textTop + row_.layout.content.height() - 1, onPaper(color));
    }

    PaperCanvas& canvas_;
    PaperContext& context_;
    const PaperRow& row_;
    QPoint offset_;
    const TesselChatLog::Event& event_;
};

}  // namespace

PagePainter::PagePainter(const TesselChatLog& chatlog, PaperContext& context,
                         const PaperSetup& setup)
    : chatlog_(chatlog),
      context_(context),
      title_(shownText(setup.title).simplified()),
      area_(setup.format.area()) {
    const RowContext& rows = context.rows();
    lineHeight_ = rows.px(QFontMetricsF(rows.fonts.body).height()) + 1;
    headingHeight_ = lineHeight_ + rows.px(belowHeading);
    footHeight_ = lineHeight_ + rows.px(aboveFoot);
}

QSize PagePainter::rowsSize() const {
    return QSize(area_.width(), area_.height() - headingHeight_ - footHeight_)
        .expandedTo(QSize(1, 1));
}

// One line: what is too long for it is elided.
RowLayout PagePainter::line(const QString& text, Qt::Alignment side, int width) const {
    const RowContext& rows = context_.rows();
    TextFormat format;
    format.font = rows.fonts.body;
    format.emojiFamily = rows.fonts.emojiFamily;
    format.direction = rows.direction;
    format.ratio = rows.ratio;
    const QString shown =
        QFontMetricsF(format.font)
            .elidedText(text, Qt::ElideRight, std::max(width / rows.ratio - 1, 1.0));
    RowLayout layout;
    layout.text = std::make_shared<LaidOutText>(shown, format, width);
    const int room = area_.width() - layout.text->width();
    const int x = side & Qt::AlignHCenter ? room / 2 : side & Qt::AlignRight ? room : 0;
    layout.content = QRect(x, 0, layout.text->width(), layout.text->height());
    return layout;
}

void PagePainter::paintHeading(PaperCanvas& canvas, const PaperPage& page) const {
    const RowContext& rows = context_.rows();
    const QColor color = onPaper(rows.colors.secondaryLabel);
    const auto& first = chatlog_.event(page.rows.front().event);
    const bool isMirrored = rows.direction == Qt::RightToLeft;
    const auto show = [&](const RowLayout& layout, int top) {
        canvas.text(*layout.text, QPoint(layout.content.x(), top), 0, layout.content.height(),
                    color);
    };
    const RowLayout day = line(dayFormatter().string(first.timestamp),
                               isMirrored ? Qt::AlignRight : Qt::AlignLeft, area_.width() / 2);
    show(day, 0);
    const int left = area_.width() - day.content.width() - rows.px(2 * standardPadding);
    if (!title_.isEmpty()) show(line(title_, isMirrored ? Qt::AlignLeft : Qt::AlignRight, left), 0);
    show(line(QLocale().toString(page.number), Qt::AlignHCenter, area_.width()),
         area_.height() - lineHeight_);
}

void PagePainter::paint(PaperCanvas& canvas, const PaperPage& page) const {
    paintHeading(canvas, page);
    for (const PaperRow& row : page.rows) {
        const auto& event = chatlog_.event(row.event);
        std::visit(RowPainterOnPaper(canvas, context_, row, paperTop(row), event),
                   row.view->content());
    }
}

}  // namespace vell
