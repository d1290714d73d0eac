#pragma once
// SPDX-License-Identifier: MIT
//
// ArchiveModel: an archive as a tree: what isn't among its objects, then these by number. Parts
// are read when they are fetched; where there are many they stand in ranges of a thousand, so that
// nothing costs more than that. References are leaves; objectIndex() is where they lead.

#include <QAbstractItemModel>
#include <memory>
#include <optional>

#include "inspector/archive.h"

namespace vell {

class ArchiveModel final : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum Column { name, value, type, offset };
    static constexpr int columns = 4;

    explicit ArchiveModel(std::unique_ptr<inspector::Archive> archive, QObject* parent = nullptr);
    ~ArchiveModel() override;

    /// The index of an object, for which the ranges that it is in are fetched; invalid when there
    /// is no such object.
    [[nodiscard]] QModelIndex objectIndex(quint64 number);
    /// The object that the index is, or is a part of.
    [[nodiscard]] std::optional<quint64> objectAt(const QModelIndex& index) const;
    /// Null for a range.
    [[nodiscard]] const inspector::Entry* entryAt(const QModelIndex& index) const;
    /// "#7.NS.data"
    [[nodiscard]] QString path(const QModelIndex& index) const;

    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    [[nodiscard]] int columnCount(const QModelIndex&) const override { return columns; }
    [[nodiscard]] bool hasChildren(const QModelIndex& parent) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  private:
    struct Node;
    using Nodes = std::vector<std::unique_ptr<Node>>;

    [[nodiscard]] Node* node(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex indexOf(const Node& node, int column = 0) const;
    void append(Nodes& nodes, const Node* whole, quint64 first, quint64 count) const;
    [[nodiscard]] Nodes parts(const Node& node) const;
    [[nodiscard]] QString nameOf(const Node& node) const;
    [[nodiscard]] QString valueOf(const Node& node) const;
    [[nodiscard]] QString shown(const inspector::Entry& entry) const;

    std::unique_ptr<inspector::Archive> archive_;
    std::unique_ptr<Node> root_;
};

}  // namespace vell
