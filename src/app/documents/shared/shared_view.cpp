// SPDX-License-Identifier: MIT
#include "app/documents/shared/shared_view.h"

#include <QContextMenuEvent>
#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "app/documents/shared/shared_delegate.h"
#include "app/documents/shared/shared_items.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_context.h"

namespace vell {
namespace {

constexpr int narrowestPicture = 92;  // points

}  // namespace

SharedView::SharedView(SharedItems* items, PictureCache& pictures, const QString& whenEmpty)
    : items_(items), whenEmpty_(whenEmpty) {
    items->setParent(this);
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        header->hide();
        header->setMinimumSectionSize(1);
        header->setSectionResizeMode(QHeaderView::Fixed);
    }
    setModel(items);
    setItemDelegate(new SharedDelegate(*items, pictures, this));
    setFrameShape(NoFrame);
    setShowGrid(false);
    setTabKeyNavigation(false);
    setSelectionMode(SingleSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setEditTriggers(NoEditTriggers);
    connect(this, &QTableView::clicked, this,
            [this](const QModelIndex& index) { Q_EMIT chosen(items_->row(index)); });
    connect(this, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { Q_EMIT opened(items_->row(index)); });
    connect(&pictures, &PictureCache::changed, viewport(), qOverload<>(&QWidget::update));
}

void SharedView::arrange() {
    const int width = std::max(viewport()->width(), 1);
    const bool isGrid = items_->kind() == SharedKind::picture;
    const int columns = isGrid ? std::max(width / narrowestPicture, 1) : 1;
    const int side = width / columns;
    const QModelIndex current = currentIndex();
    const int at = current.row() * items_->columnCount() + current.column();
    items_->setColumns(columns);
    if (current.isValid()) setCurrentIndex(items_->index(at / columns, at % columns));
    horizontalHeader()->setDefaultSectionSize(side);
    verticalHeader()->setDefaultSectionSize(isGrid ? side : SharedDelegate::lineItemHeight(font()));
}

void SharedView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) arrange();
}

void SharedView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) arrange();
}

void SharedView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (items_->count() > 0) return;
    QPainter painter(viewport());
    painter.setPen(RowColors::make(palette()).secondaryLabel);
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, whenEmpty_);
}

void SharedView::keyPressEvent(QKeyEvent* event) {
    const qsizetype row = items_->row(currentIndex());
    if (row >= 0 && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        Q_EMIT chosen(row);
    } else if (row >= 0 && event->key() == Qt::Key_Space) {
        Q_EMIT opened(row);
    } else {
        QTableView::keyPressEvent(event);
    }
}

void SharedView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isKey ? currentIndex() : indexAt(event->pos());
    const qsizetype row = items_->row(index);
    if (row < 0) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("&Show in Chat"), this, [this, row] { Q_EMIT chosen(row); });
    if (items_->kind() != SharedKind::file)
        menu->addAction(tr("&Open"), this, [this, row] { Q_EMIT opened(row); });
    menu->popup(isKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

}  // namespace vell
