#pragma once
// SPDX-License-Identifier: MIT
//
// PeopleModel: whom the library's conversations are with, everybody together in the first row.
// When the library grows, rows keep their persistent indexes.

#include <QAbstractListModel>
#include <memory>
#include <optional>
#include <vector>

#include "library/library_people.h"

namespace vell {

class PeopleModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    enum class Order { recent, name };
    static constexpr int everybody = -1;

    explicit PeopleModel(QObject* parent = nullptr);

    void setPeople(std::shared_ptr<const LibraryPeople> people);
    [[nodiscard]] const LibraryPeople& people() const { return *people_; }
    [[nodiscard]] const std::shared_ptr<const LibraryPeople>& sharedPeople() const {
        return people_;
    }
    void setOrder(Order order);
    [[nodiscard]] Order order() const { return order_; }
    /// Shows only those whose names or addresses contain the text.
    void setFilter(const QString& text);
    /// Shows only single persons other than this one.
    void setOthersOf(const TesselUserID& person);

    /// An index of LibraryPeople::partners; `everybody` for the first row.
    [[nodiscard]] int partner(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex indexOf(int partner) const;
    /// The address of a row that stands for just one person.
    [[nodiscard]] std::optional<TesselUserID> person(const QModelIndex& index) const;
    /// "1,204 messages, 3 May 2009".
    [[nodiscard]] QString details(const QModelIndex& index) const;
    /// Whose pictures the row shows.
    [[nodiscard]] std::vector<TesselUserID> pictured(const QModelIndex& index) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& indexes) const override;
    [[nodiscard]] bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row,
                                       int column, const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::LinkAction; }

  Q_SIGNALS:
    /// A person was dragged onto another one.
    void joinRequested(const vell::TesselUserID& person, const vell::TesselUserID& other);

  private:
    [[nodiscard]] std::optional<TesselUserID> personOf(int partner) const;
    [[nodiscard]] bool isShown(int partner) const;
    /// Partners in their order.
    [[nodiscard]] std::vector<int> arranged() const;
    void rearrange();

    std::shared_ptr<const LibraryPeople> people_;
    Order order_ = Order::recent;
    QString filter_;  // folded
    std::optional<TesselUserID> othersOf_;
    std::vector<int> rows_;
};

}  // namespace vell
