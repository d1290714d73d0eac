#pragma once
// SPDX-License-Identifier: MIT
//
// PeopleDelegate: paints the rows of a PeopleModel, each with its picture.

#include <QStyledItemDelegate>

namespace vell {

class ContactsStore;
class PeopleModel;

class PeopleDelegate final : public QStyledItemDelegate {
  public:
    /// The model and the store must outlive it.
    PeopleDelegate(const PeopleModel& model, const ContactsStore& contacts, QObject* parent)
        : QStyledItemDelegate(parent), model_(model), contacts_(contacts) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;

  private:
    const PeopleModel& model_;
    const ContactsStore& contacts_;
};

}  // namespace vell
