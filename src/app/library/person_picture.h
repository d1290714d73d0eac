#pragma once
// SPDX-License-Identifier: MIT
//
// Pictures of people in lists, as the timeline shows them: the contact's, else the identicon.

#include <QPainter>
#include <QRect>
#include <vector>

#include "transcript/user_id.h"

namespace vell {

class ContactsStore;

/// Paints the person's picture, or the first two of a group over each other.
void paintPeople(QPainter& painter, const QRect& place, const std::vector<TesselUserID>& people,
                 const ContactsStore& contacts);

}  // namespace vell
