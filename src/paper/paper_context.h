#pragma once
// SPDX-License-Identifier: MIT
//
// PaperContext: what rows need to be laid out for paper, with caches of its own: pages are made on
// a thread beside the window's. Serves the thread that makes it.

#include <QFont>
#include <QHash>
#include <QImage>
#include <QString>

#include "identity/contacts/contacts_store.h"
#include "identity/identicons/identicons.h"
#include "paper/paper_format.h"
#include "timeline/bubbles/background_cache.h"
#include "timeline/bubbles/bubble_colors.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_context.h"
#include "timeline/rows/timeline_row_view.h"
#include "timeline/text/text_tiles.h"

namespace vell {

/// How a chat is to be put on paper: values that any thread may have.
struct PaperSetup {
    PaperFormat format;
    QString title;
    QFont font;  ///< the desktop's
    Qt::LayoutDirection direction = Qt::LeftToRight;
    ContactsStore::Table contacts;
    BubbleColors colors;
};

/// For a chat as the program shows it now. Window thread only.
[[nodiscard]] PaperSetup currentPaperSetup(const TesselChatLog& chatlog,
                                           const ContactsStore& contacts, const QString& title,
                                           const PaperFormat& format);

class PaperContext {
  public:
    explicit PaperContext(const PaperSetup& setup);
    PaperContext(const PaperContext&) = delete;
    PaperContext& operator=(const PaperContext&) = delete;

    [[nodiscard]] const RowContext& rows() const { return rows_; }
    /// Lays a row out exactly. Waits for its picture, which may turn out not to be drawable.
    [[nodiscard]] RowLayout measure(const TimelineRowView& view, int width);
    /// The picture that measure() has waited for; null where there is none.
    [[nodiscard]] const QImage* picture(const ImageBubbleView& view, QSize pixels);
    /// Of a sender, in device pixels; null where the user id isn't text.
    [[nodiscard]] QImage icon(const TesselUserID& sender);

  private:
    static constexpr qsizetype pictureBytes = qsizetype{64} * 1024 * 1024;
    static constexpr qsizetype backgroundBytes = qsizetype{8} * 1024 * 1024;

    ContactsStore contacts_;
    BubbleColors colors_;
    BackgroundCache backgrounds_{backgroundBytes};
    TextTiles tiles_;
    PictureCache pictures_{pictureBytes};
    Identicons identicons_;
    QHash<QString, QImage> icons_;
    RowContext rows_;
};

}  // namespace vell
