#pragma once
// SPDX-License-Identifier: MIT
//
// SharedItems: a chat's pictures, links or files as a table, the pictures in several columns.

#include <QAbstractTableModel>
#include <QStringList>
#include <memory>
#include <vector>

#include "app/documents/chat_contents.h"

namespace vell {

class ContactsStore;

class SharedItems final : public QAbstractTableModel {
    Q_OBJECT

  public:
    SharedItems(std::shared_ptr<const TesselChatLog> log, SharedKind kind,
                const ContactsStore& contacts, QObject* parent);

    [[nodiscard]] SharedKind kind() const { return kind_; }
    [[nodiscard]] qsizetype count() const { return std::ssize(rows_); }
    void setRows(std::vector<qsizetype> rows);
    void setColumns(int columns);

    /// The event, and its row in the chat; null and -1 behind the last one.
    [[nodiscard]] const TesselChatLog::Event* eventAt(const QModelIndex& index) const;
    [[nodiscard]] qsizetype row(const QModelIndex& index) const;
    /// What it is, then where a link leads or how large a file is, then who sent it and when.
    [[nodiscard]] QStringList lines(const QModelIndex& index) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    std::shared_ptr<const TesselChatLog> log_;
    SharedKind kind_;
    const ContactsStore& contacts_;
    std::vector<qsizetype> rows_;
    int columns_ = 1;
};

}  // namespace vell
