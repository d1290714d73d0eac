// SPDX-License-Identifier: MIT
#include "app/documents/shared/shared_items.h"

#include <QLocale>
#include <utility>
#include <variant>

#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "timeline/input/links.h"
#include "timeline/rows/row_text.h"
#include "toolkit/date_formatters.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

QString shownLine(const QString& text) {
    return shownText(text).simplified();
}

QString fileName(const foundation::FileWrapper& wrapper) {
    return shownLine(wrapper.filename.value_or(wrapper.preferredFilename.value_or(QString())));
}

}  // namespace

SharedItems::SharedItems(std::shared_ptr<const TesselChatLog> log, SharedKind kind,
                         const ContactsStore& contacts, QObject* parent)
    : QAbstractTableModel(parent), log_(std::move(log)), kind_(kind), contacts_(contacts) {}

void SharedItems::setRows(std::vector<qsizetype> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

void SharedItems::setColumns(int columns) {
    if (columns == columns_) return;
    beginResetModel();
    columns_ = columns;
    endResetModel();
}

qsizetype SharedItems::row(const QModelIndex& index) const {
    const qsizetype at = qsizetype(index.row()) * columns_ + index.column();
    return index.isValid() && at < count() ? rows_[static_cast<size_t>(at)] : -1;
}

const TesselChatLog::Event* SharedItems::eventAt(const QModelIndex& index) const {
    const qsizetype row = this->row(index);
    return row < 0 ? nullptr : &log_->event(row);
}

QStringList SharedItems::lines(const QModelIndex& index) const {
    const TesselChatLog::Event* event = eventAt(index);
    if (!event) return {};
    QStringList lines;
    if (const auto* image = std::get_if<TesselChatLog::Image>(&event->value)) {
        const QString name = shownLine(pictureName(*image));
        lines += name.isEmpty() ? tr("Picture") : name;
    } else if (const auto* link = std::get_if<TesselChatLog::Link>(&event->value)) {
        lines += shownLine(link->title);
        lines += shownAddress(link->url->absoluteString());
    } else if (const auto* file = std::get_if<TesselChatLog::File>(&event->value)) {
        const QString name = fileName(*file->wrapper);
        lines += name.isEmpty() ? tr("File") : name;
        if (file->wrapper->contents)
            lines += QLocale().formattedDataSize(file->wrapper->contents->size());
    }
    QString origin = daySeparatorFormatter().string(event->timestamp);
    if (event->sender)
        origin.prepend(shownLine(senderName(*event->sender, contacts_)) + QStringLiteral(" · "));
    lines += origin;
    return lines;
}

int SharedItems::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>((count() + columns_ - 1) / columns_);
}

int SharedItems::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

QVariant SharedItems::data(const QModelIndex& index, int role) const {
    switch (role) {
        case Qt::DisplayRole:
            return lines(index).value(0);
        case Qt::AccessibleTextRole:
            return lines(index).join(QStringLiteral(", "));
        case Qt::ToolTipRole: {
            // Texts of others aren't markup.
            const QString plain = lines(index).join(u'\n').toHtmlEscaped();
            return QStringLiteral("<qt>") + QString(plain).replace(u'\n', QStringLiteral("<br>")) +
                   QStringLiteral("</qt>");
        }
        default:
            return {};
    }
}

Qt::ItemFlags SharedItems::flags(const QModelIndex& index) const {
    return row(index) < 0 ? Qt::NoItemFlags : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

}  // namespace vell
