// SPDX-License-Identifier: MIT
#include "timeline/rows/sender_views.h"

#include <QPainter>

#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "identity/identicons/identicons.h"
#include "timeline/pictures/scaled_pictures.h"
#include "timeline/rows/line_layout.h"
#include "toolkit/shown_text.h"
#include "toolkit/style.h"

namespace vell {

RowLayout SenderInfoView::measure(const RowContext& context, int width) const {
    return measureLine(shownText(senderName(sender, context.contacts)), context.fonts.footnote,
                       isOwn ? LineSide::right : LineSide::left, context, width);
}

void SenderInfoView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                           const RowPaint& what) const {
    paintLine(painter, layout, context.colors.label, context, what);
}

QSize SenderIconView::size(const RowContext& context) {
    return {context.px(Style::userIconSize.width()), context.px(Style::userIconSize.height())};
}

void SenderIconView::paint(QPainter& painter, const QRect& rect, const RowContext& context) const {
    const auto contact = context.contacts.addressToContact().constFind(sender.userID);
    const bool hasPicture = contact != context.contacts.addressToContact().cend() && contact->image;
    const QImage image = hasPicture ? ScaledPictures::shared().image(*contact->image, rect.size())
                                    : identicons().icon(sender.userID, context.ratio);
    if (image.isNull()) return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, image.size() != rect.size());
    painter.drawImage(rect, image);
}

}  // namespace vell
