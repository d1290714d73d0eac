// SPDX-License-Identifier: MIT
#include "app/library/person_picture.h"

#include <QPainterPath>

#include "identity/contacts/contacts_store.h"
#include "identity/identicons/identicons.h"

namespace vell {
namespace {

constexpr qreal cornerPart = 0.18;  // of the side
constexpr qreal groupSide = 0.68;   // of each of two

void paintPerson(QPainter& painter, const QRectF& place, const TesselUserID& person,
                 const ContactsStore& contacts) {
    const auto contact = contacts.addressToContact().constFind(person.userID);
    const bool hasPicture = contact != contacts.addressToContact().cend() && contact->image;
    const QImage image =
        hasPicture ? *contact->image
                   : identicons().icon(person.userID, painter.device()->devicePixelRatioF());
    if (image.isNull()) return;
    QPainterPath outline;
    outline.addRoundedRect(place, place.width() * cornerPart, place.height() * cornerPart);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (hasPicture) painter.setClipPath(outline);
    painter.drawImage(place, image);
    painter.restore();
}

}  // namespace

void paintPeople(QPainter& painter, const QRect& place, const std::vector<TesselUserID>& people,
                 const ContactsStore& contacts) {
    if (people.empty()) return;
    if (people.size() == 1) return paintPerson(painter, place, people.front(), contacts);
    const QSizeF size = QSizeF(place.size()) * groupSide;
    QRectF behind(QPointF(), size);
    behind.moveTopRight(QRectF(place).topRight());
    QRectF before(QPointF(), size);
    before.moveBottomLeft(QRectF(place).bottomLeft());
    paintPerson(painter, behind, people[1], contacts);
    paintPerson(painter, before, people[0], contacts);
}

}  // namespace vell
