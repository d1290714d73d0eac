// SPDX-License-Identifier: MIT
#include "app/library/people_delegate.h"

#include "app/library/list_row.h"
#include "app/library/people_model.h"
#include "app/library/person_picture.h"
#include "app/windows/icons.h"

namespace vell {
namespace {

constexpr int personSize = 34;

}  // namespace

void PeopleDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    ListRow row(*painter, option);
    const QRect start = row.takeStart(personSize);
    QRect picture(0, 0, personSize, personSize);
    picture.moveCenter(start.center());
    const auto people = model_.pictured(index);
    if (people.empty())
        peopleIcon().paint(painter, picture.adjusted(5, 5, -5, -5), Qt::AlignCenter,
                           row.isHighlighted() ? QIcon::Selected : QIcon::Normal);
    else
        paintPeople(*painter, picture, people, contacts_);
    row.write(ListRow::Line::first, index.data().toString(), ListRow::Weight::strong);
    row.write(ListRow::Line::second, model_.details(index), ListRow::Weight::faded);
}

QSize PeopleDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {personSize, ListRow::height(option.font, personSize)};
}

}  // namespace vell
