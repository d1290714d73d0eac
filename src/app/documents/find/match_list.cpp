// SPDX-License-Identifier: MIT
#include "app/documents/find/match_list.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTextLayout>

#include "app/documents/find/match_model.h"

namespace vell {
namespace {

constexpr int lineMargin = 16;
constexpr int rowPadding = 10;
// Narrower lists show no senders and dates.
constexpr int leastLine = 220;

/// The line with its match in bold, at the other side who wrote it and when.
class MatchDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& given,
               const QModelIndex& index) const override {
        QStyleOptionViewItem option = given;
        initStyleOption(&option, index);
        option.state &= ~QStyle::State_HasFocus;
        option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter,
                                              option.widget);
        const bool isSelected = option.state & QStyle::State_Selected;
        const bool isActive = option.state & QStyle::State_Active;
        QColor color =
            option.palette.color(isActive ? QPalette::Active : QPalette::Inactive,
                                 isSelected ? QPalette::HighlightedText : QPalette::Text);
        painter->save();
        QRect room = option.rect.adjusted(lineMargin, 0, -lineMargin, 0);
        const QString origin = index.data(MatchModel::originRole).toString();
        const int wide = option.fontMetrics.horizontalAdvance(origin);
        if (room.width() - wide - lineMargin >= leastLine) {
            QColor faded = color;
            faded.setAlphaF(0.65F);
            painter->setPen(faded);
            const auto side = QStyle::visualAlignment(option.direction, Qt::AlignRight);
            painter->drawText(room, int(side | Qt::AlignVCenter | Qt::TextSingleLine), origin);
            if (option.direction == Qt::LeftToRight) {
                room.setRight(room.right() - wide - lineMargin);
            } else {
                room.setLeft(room.left() + wide + lineMargin);
            }
        }
        painter->setPen(color);
        paintLine(*painter, option, index, room);
        painter->restore();
    }

  private:
    static void paintLine(QPainter& painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index, const QRect& room) {
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        bold.setFontUnderline(true);
        const QString text =
            option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, room.width());
        QTextLayout layout(text, option.font);
        QTextOption lineOption(QStyle::visualAlignment(option.direction, Qt::AlignLeft));
        lineOption.setWrapMode(QTextOption::NoWrap);
        layout.setTextOption(lineOption);
        layout.setFormats({{index.data(MatchModel::startRole).toInt(),
                            index.data(MatchModel::lengthRole).toInt(), bold}});
        layout.beginLayout();
        QTextLine line = layout.createLine();
        if (line.isValid()) line.setLineWidth(room.width());
        layout.endLayout();
        const qreal above = (room.height() - layout.boundingRect().height()) / 2;
        painter.setClipRect(room);
        layout.draw(&painter, QPointF(room.left(), room.top() + above));
    }
};

}  // namespace

MatchList::MatchList(std::shared_ptr<const TesselChatLog> log, const ContactsStore& contacts,
                     QWidget* parent)
    : QDockWidget(parent),
      model_(new MatchModel(std::move(log), contacts, this)),
      view_(new QTableView) {
    setObjectName(QStringLiteral("matchList"));
    setWindowTitle(tr("Matches"));
    setFeatures(NoDockWidgetFeatures);
    setTitleBarWidget(new QWidget(this));
    view_->setModel(model_);
    view_->setAccessibleName(tr("Matches"));
    view_->setItemDelegate(new MatchDelegate(view_));
    view_->setFrameShape(QFrame::NoFrame);
    view_->setShowGrid(false);
    view_->setTabKeyNavigation(false);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setSelectionMode(QAbstractItemView::SingleSelection);
    view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view_->horizontalHeader()->hide();
    view_->horizontalHeader()->setStretchLastSection(true);
    QHeaderView* rows = view_->verticalHeader();
    rows->hide();
    rows->setMinimumSectionSize(view_->fontMetrics().height() + rowPadding);
    rows->setDefaultSectionSize(rows->minimumSectionSize());
    rows->setSectionResizeMode(QHeaderView::Fixed);
    view_->setMinimumHeight(2 * rows->defaultSectionSize());
    view_->installEventFilter(this);
    setWidget(view_);
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (current.isValid() && !isFollowing_) Q_EMIT chosen(current.row());
            });
    // A click on the current row goes there again.
    connect(view_, &QTableView::clicked, this,
            [this](const QModelIndex& index) { Q_EMIT chosen(index.row()); });
    connect(view_, &QTableView::activated, this,
            [this](const QModelIndex& index) { Q_EMIT chosen(index.row()); });
}

void MatchList::setMatches(const std::shared_ptr<const FoundSpans>& matches) {
    model_->setMatches(matches);
}

void MatchList::grow(qsizetype first, qsizetype count) {
    const QScopedValueRollback following(isFollowing_, true);
    model_->grow(first, count);
}

void MatchList::setCurrent(qsizetype index) {
    if (view_->currentIndex().row() == index) return;
    const QScopedValueRollback following(isFollowing_, true);
    view_->setCurrentIndex(model_->index(static_cast<int>(index), 0));
}

void MatchList::updateTexts() {
    view_->viewport()->update();
}

void MatchList::takeFocus() {
    view_->setFocus(Qt::OtherFocusReason);
}

bool MatchList::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDockWidget::eventFilter(object, event);
    switch (static_cast<const QKeyEvent*>(event)->key()) {
        case Qt::Key_Escape:
            Q_EMIT left();
            return true;
        // A table takes these for the ends of a row.
        case Qt::Key_Home:
            view_->setCurrentIndex(model_->index(0, 0));
            return true;
        case Qt::Key_End:
            view_->setCurrentIndex(model_->index(model_->rowCount() - 1, 0));
            return true;
        default:
            return QDockWidget::eventFilter(object, event);
    }
}

}  // namespace vell
