// SPDX-License-Identifier: MIT
#include "app/documents/archive/archive_view.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeDatabase>
#include <QScopedValueRollback>

#include "app/documents/archive/archive_model.h"
#include "timeline/saving/saving.h"

namespace vell {
namespace {

/// What kinds of files are recognised by.
constexpr qsizetype recognisedBytes = 4096;

QString suggestedName(const QString& path, const foundation::Data& bytes) {
    const QByteArray start =
        bytes.view().first(std::min(bytes.size(), recognisedBytes)).toByteArray();
    const QString suffix = QMimeDatabase().mimeTypeForData(start).preferredSuffix();
    return path + u'.' + (suffix.isEmpty() ? QStringLiteral("bin") : suffix);
}

}  // namespace

ArchiveView::ArchiveView() {
    setObjectName(QStringLiteral("archiveView"));
    setAccessibleName(tr("Archive"));
    setFrameShape(NoFrame);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionMode(SingleSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setTextElideMode(Qt::ElideRight);
    setEditTriggers(NoEditTriggers);
    followAction_ = addCommand(tr("&Go to Object"), Qt::Key_Return, &ArchiveView::follow);
    copyAction_ = addCommand(tr("&Copy Value"), QKeySequence::Copy, &ArchiveView::copyValue);
    saveAction_ =
        addCommand(tr("&Save Value As …"), Qt::CTRL | Qt::ALT | Qt::Key_S, &ArchiveView::saveValue);
    connect(this, &QTreeView::activated, this, &ArchiveView::follow);
}

QAction* ArchiveView::addCommand(const QString& text, const QKeySequence& key,
                                 void (ArchiveView::*command)()) {
    auto* action = new QAction(text, this);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, command);
    addAction(action);
    return action;
}

void ArchiveView::setArchive(ArchiveModel* model) {
    model->setParent(this);
    archive_ = model;
    setModel(model);
    model->fetchMore({});
    const int unit = fontMetrics().averageCharWidth();
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(ArchiveModel::value, QHeaderView::Stretch);
    header()->resizeSection(ArchiveModel::name, 18 * unit);
    header()->resizeSection(ArchiveModel::type, 11 * unit);
    header()->resizeSection(ArchiveModel::offset, 10 * unit);
}

void ArchiveView::goToObject(quint64 number) {
    if (!archive_) return;
    const QModelIndex index = archive_->objectIndex(number);
    if (!index.isValid()) return;
    const QScopedValueRollback guard(isFollowing_, true);
    scrollTo(index);
    setCurrentIndex(index);
}

void ArchiveView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    const inspector::Entry* entry = archive_ ? archive_->entryAt(current) : nullptr;
    followAction_->setEnabled(entry && entry->target);
    copyAction_->setEnabled(entry);
    saveAction_->setEnabled(entry && !entry->bytes.isEmpty());
    if (isFollowing_ || !archive_) return;
    if (const auto object = archive_->objectAt(current)) Q_EMIT objectChosen(*object);
}

/// The window has a command of this key too.
bool ArchiveView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        copyValue();
        return true;
    }
    return QTreeView::event(event);
}

void ArchiveView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isKey ? currentIndex() : indexAt(event->pos());
    if (!archive_ || !archive_->entryAt(index)) return;
    setCurrentIndex(index);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({followAction_, copyAction_, saveAction_});
    const QRect row = visualRect(index);
    menu->popup(isKey ? viewport()->mapToGlobal(QPoint(row.center().x(), row.bottom()))
                      : event->globalPos());
}

void ArchiveView::follow() {
    const inspector::Entry* entry = archive_ ? archive_->entryAt(currentIndex()) : nullptr;
    if (!entry || !entry->target) return;
    const QModelIndex index = archive_->objectIndex(*entry->target);
    if (!index.isValid()) return;
    scrollTo(index);
    setCurrentIndex(index);
    expand(index);
}

/// A text as a whole, of others what is shown.
void ArchiveView::copyValue() {
    const QModelIndex index = currentIndex();
    const inspector::Entry* entry = archive_ ? archive_->entryAt(index) : nullptr;
    if (!entry) return;
    const bool isText = entry->kind == inspector::Entry::Kind::text;
    QGuiApplication::clipboard()->setText(
        isText
            ? entry->value
            : index.siblingAtColumn(ArchiveModel::value).data(Qt::AccessibleTextRole).toString());
}

void ArchiveView::saveValue() {
    const inspector::Entry* entry = archive_ ? archive_->entryAt(currentIndex()) : nullptr;
    if (!entry || entry->bytes.isEmpty()) return;
    saveData(*window(), tr("Save Value"),
             suggestedName(archive_->path(currentIndex()), entry->bytes), entry->bytes);
}

}  // namespace vell
