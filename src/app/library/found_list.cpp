// SPDX-License-Identifier: MIT
#include "app/library/found_list.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include "app/library/list_row.h"
#include "app/library/person_picture.h"
#include "app/library/shown_facts.h"

namespace vell {
namespace {

constexpr int senderSize = 30;
constexpr float markedGround = 0.25F;

class FoundDelegate final : public QStyledItemDelegate {
  public:
    FoundDelegate(const FoundMessages& found, const ContactsStore& contacts, QObject* parent)
        : QStyledItemDelegate(parent), found_(found), contacts_(contacts) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const FoundMessages::Row& found = found_.row(index);
        ListRow row(*painter, option);
        const QRect start = row.takeStart(senderSize);
        QRect picture(0, 0, senderSize, senderSize);
        picture.moveCenter(start.center());
        if (found.sender) paintPeople(*painter, picture, {*found.sender}, contacts_);
        row.writeEnd(ListRow::Line::first, shownDay(found.date));
        row.write(ListRow::Line::first, found_.origin(found), ListRow::Weight::strong);
        row.write(ListRow::Line::second, found.line, ListRow::Weight::faded,
                  marks(found, option, row));
    }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex&) const override {
        return {1, ListRow::height(option.font, senderSize)};
    }

  private:
    const FoundMessages& found_;
    const ContactsStore& contacts_;

    static QVector<QTextLayout::FormatRange> marks(const FoundMessages::Row& found,
                                                   const QStyleOptionViewItem& option,
                                                   const ListRow& row) {
        QTextCharFormat format;
        format.setFontWeight(QFont::DemiBold);
        format.setForeground(row.color(ListRow::Weight::normal));
        if (!row.isHighlighted()) {
            QColor ground = option.palette.color(QPalette::Highlight);
            ground.setAlphaF(markedGround);
            format.setBackground(ground);
        }
        QVector<QTextLayout::FormatRange> ranges;
        for (const TextStretch& stretch : found.stretches)
            ranges.append(
                {static_cast<int>(stretch.position), static_cast<int>(stretch.length), format});
        return ranges;
    }
};

}  // namespace

FoundList::FoundList(FoundMessages& found, const ContactsStore& contacts, QWidget* parent)
    : QListView(parent), found_(found) {
    setObjectName(QStringLiteral("libraryFound"));
    setAccessibleName(tr("Messages found"));
    setModel(&found_);
    setItemDelegate(new FoundDelegate(found_, contacts, this));
    setUniformItemSizes(true);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(&found_, &FoundMessages::stateChanged, viewport(), qOverload<>(&QWidget::update));
}

void FoundList::chooseFirst() {
    if (!currentIndex().isValid()) setCurrentIndex(found_.index(0));
}

const FoundMessages::Row* FoundList::chosen() const {
    return currentIndex().isValid() ? &found_.row(currentIndex()) : nullptr;
}

void FoundList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (current.isValid()) Q_EMIT chosenChanged();
}

void FoundList::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && currentIndex().isValid())
        Q_EMIT entered();
    else if (key == Qt::Key_Escape || (key == Qt::Key_Up && currentIndex().row() <= 0))
        Q_EMIT left();
    else
        QListView::keyPressEvent(event);
}

void FoundList::mouseDoubleClickEvent(QMouseEvent* event) {
    QListView::mouseDoubleClickEvent(event);
    if (currentIndex().isValid()) Q_EMIT entered();
}

void FoundList::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (found_.rowCount() > 0 || found_.isSearching()) return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter, tr("No messages found"));
}

}  // namespace vell
