// SPDX-License-Identifier: MIT
#include "app/library/conversation_list.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include "app/library/list_row.h"

namespace vell {
namespace {

/// Headings are open as long as there are no more conversations below them.
constexpr int mostExpanded = 400;
constexpr int arrowSize = 7;
constexpr qreal yearShare = 1.15;  // of the font

/// A triangle that points to the heading's conversations.
void paintArrow(QPainter& painter, const QRect& room, bool isOpen, Qt::LayoutDirection direction) {
    QPolygonF arrow;
    const qreal half = arrowSize / 2.0;
    if (isOpen)
        arrow << QPointF(-half, -half / 2) << QPointF(half, -half / 2) << QPointF(0, half);
    else
        arrow << QPointF(-half / 2, -half) << QPointF(-half / 2, half) << QPointF(half, 0);
    painter.save();
    painter.translate(QRectF(room).center());
    if (direction == Qt::RightToLeft) painter.scale(-1, 1);
    painter.drawPolygon(arrow);
    painter.restore();
}

class ConversationDelegate final : public QStyledItemDelegate {
  public:
    ConversationDelegate(const ConversationModel& model, const QTreeView& view, QObject* parent)
        : QStyledItemDelegate(parent), model_(model), view_(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const ConversationModel::Texts texts = model_.texts(index);
        if (!model_.conversation(index)) return paintHeading(*painter, option, index, texts.first);
        ListRow row(*painter, option);
        row.writeEnd(ListRow::Line::first, texts.firstEnd);
        row.write(ListRow::Line::first, texts.first, ListRow::Weight::normal);
        row.writeEnd(ListRow::Line::second, texts.secondEnd);
        row.write(ListRow::Line::second, texts.second, ListRow::Weight::faded);
    }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        if (model_.conversation(index)) return {1, ListRow::height(option.font)};
        return {1, ListRow::singleHeight(headingFont(option.font, index))};
    }

  private:
    const ConversationModel& model_;
    const QTreeView& view_;

    [[nodiscard]] QFont headingFont(QFont font, const QModelIndex& index) const {
        font.setWeight(QFont::DemiBold);
        if (!model_.isYear(index)) return ListRow::smallFont(font);
        if (font.pointSizeF() > 0) font.setPointSizeF(font.pointSizeF() * yearShare);
        return font;
    }
    void paintHeading(QPainter& painter, QStyleOptionViewItem option, const QModelIndex& index,
                      const QString& text) const {
        option.font = headingFont(option.font, index);
        ListRow row(painter, option);
        const QRect arrow = row.takeStart(arrowSize);
        painter.setPen(Qt::NoPen);
        painter.setBrush(row.color(ListRow::Weight::faded));
        paintArrow(painter, arrow, view_.isExpanded(index), option.direction);
        row.write(ListRow::Line::only, text,
                  model_.isYear(index) ? ListRow::Weight::strong : ListRow::Weight::faded);
    }
};

}  // namespace

ConversationList::ConversationList(const QByteArray& database, QWidget* parent)
    : QTreeView(parent), model_(new ConversationModel(database, this)) {
    setObjectName(QStringLiteral("libraryConversations"));
    setAccessibleName(tr("Conversations"));
    setModel(model_);
    setItemDelegate(new ConversationDelegate(*model_, *this, this));
    setFrameShape(QFrame::NoFrame);
    setHeaderHidden(true);
    setIndentation(0);
    setExpandsOnDoubleClick(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(model_, &ConversationModel::wordsRead, viewport(), qOverload<>(&QWidget::update));
}

void ConversationList::show(const std::shared_ptr<const LibraryPeople>& people, int partner) {
    const QScopedValueRollback filling(isFilling_, true);
    model_->show(people, partner);
    expandRecent();
}

template <class Function>
void ConversationList::forHeadings(Function function) const {
    for (int year = 0; year < model_->rowCount(); ++year) {
        const QModelIndex yearIndex = model_->index(year, 0);
        function(yearIndex);
        for (int month = 0; month < model_->rowCount(yearIndex); ++month)
            function(model_->index(month, 0, yearIndex));
    }
}

void ConversationList::refresh(const std::shared_ptr<const LibraryPeople>& people, int partner) {
    const QScopedValueRollback filling(isFilling_, true);
    const QByteArray before = chosen();
    const int scrolled = verticalScrollBar()->value();
    QHash<QString, bool> wasExpanded;
    const auto keyOf = [](const QModelIndex& heading) {
        return heading.parent().data().toString() + u'/' + heading.data().toString();
    };
    forHeadings([&](const QModelIndex& at) { wasExpanded.insert(keyOf(at), isExpanded(at)); });
    show(people, partner);
    forHeadings([&](const QModelIndex& at) {
        setExpanded(at, wasExpanded.value(keyOf(at), isExpanded(at)));
    });
    if (model_->indexOf(before).isValid()) setCurrentIndex(model_->indexOf(before));
    verticalScrollBar()->setValue(scrolled);
}

/// Rows below closed headings cost nothing.
void ConversationList::expandRecent() {
    int expanded = 0;
    for (int year = 0; year < model_->rowCount() && expanded <= mostExpanded; ++year) {
        const QModelIndex yearIndex = model_->index(year, 0);
        expand(yearIndex);
        for (int month = 0; month < model_->rowCount(yearIndex) && expanded <= mostExpanded;
             ++month) {
            const QModelIndex monthIndex = model_->index(month, 0, yearIndex);
            expanded += model_->rowCount(monthIndex);
            expand(monthIndex);
        }
    }
}

QByteArray ConversationList::chosen() const {
    const LibraryConversation* conversation = model_->conversation(currentIndex());
    return conversation ? conversation->path : QByteArray();
}

void ConversationList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    if (!isFilling_ && !chosen().isEmpty()) Q_EMIT chosenChanged(chosen());
}

/// The delegate paints the arrows.
void ConversationList::drawBranches(QPainter*, const QRect&, const QModelIndex&) const {}

void ConversationList::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) return QTreeView::keyPressEvent(event);
    if (chosen().isEmpty())
        setExpanded(currentIndex(), !isExpanded(currentIndex()));
    else
        Q_EMIT opened(chosen());
}

void ConversationList::mouseReleaseEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() && !model_->conversation(index))
        setExpanded(index, !isExpanded(index));
    QTreeView::mouseReleaseEvent(event);
}

void ConversationList::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && !chosen().isEmpty()) Q_EMIT opened(chosen());
}

void ConversationList::contextMenuEvent(QContextMenuEvent* event) {
    const LibraryConversation* conversation = model_->conversation(indexAt(event->pos()));
    if (!conversation) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("&Open in Its Own Window")), &QAction::triggered, this,
            [this, path = conversation->path] { Q_EMIT opened(path); });
    menu->popup(event->globalPos());
}

}  // namespace vell
