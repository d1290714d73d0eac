// SPDX-License-Identifier: MIT
#include "app/library/people_delegate.h"

#include "app/library/list_row.h"
#include "app/library/people_model.h"
#include "app/library/person_picture.h"
#include "app/windows/icons.h"

namespace vell {
namespace {

constexpr int pictureSize = 34;

}  // namespace

void PeopleDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    ListRow row(*painter, option);
    const QRect start = row.takeStart(pictureSize);
    QRect picture(0, 0, pictureSize, pictureSize);
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
    return {pictureSize, ListRow::height(option.font, pictureSize)};
}

}  // namespace vell
