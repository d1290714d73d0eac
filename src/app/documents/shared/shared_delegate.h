#pragma once
// SPDX-License-Identifier: MIT
//
// SharedDelegate: how an item of the pane looks. A picture fills its cell; it is decoded when it is
// painted for the first time.

#include <QStyledItemDelegate>

#include "transcript/chat_log.h"

namespace vell {

class PictureCache;
class SharedItems;

class SharedDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    SharedDelegate(const SharedItems& items, PictureCache& pictures, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    /// The height of a link or a file.
    [[nodiscard]] static int lineItemHeight(const QFont& font);

  private:
    void paintPicture(QPainter& painter, const QStyleOptionViewItem& option,
                      const TesselChatLog::Image& image) const;
    void paintLines(QPainter& painter, const QStyleOptionViewItem& option,
                    const QStringList& lines) const;

    const SharedItems& items_;
    PictureCache& pictures_;
};

}  // namespace vell
