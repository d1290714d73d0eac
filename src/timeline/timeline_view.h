#pragma once
// SPDX-License-Identifier: MIT
//
// TimelineView: the scrolling timeline of one chat log. It paints the rows that are seen, whatever
// the log's length; TimelineLayout knows where they are.
//
//     auto* view = new TimelineView(document.sharedChatlog(), contacts, pictures);
//     view->setFontSize(settings.timelineFontSize());

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QElapsedTimer>
#include <memory>
#include <vector>

#include "timeline/bubbles/background_cache.h"
#include "timeline/layout/scroll_mapping.h"
#include "timeline/layout/smooth_scroll.h"
#include "timeline/layout/timeline_layout.h"
#include "timeline/rows/row_context.h"
#include "timeline/text/text_range.h"
#include "timeline/text/text_tiles.h"
#include "transcript/chat_log.h"

namespace vell {

class ContactsStore;
class CurrentRow;
class GifPlayer;
class Links;
class PictureCache;
class Pointing;
class Selecting;

class TimelineView final : public QAbstractScrollArea {
    Q_OBJECT

  public:
    /// The store and the cache must outlive the view. Gives the log's senders their colours.
    TimelineView(std::shared_ptr<const TesselChatLog> chatlog, ContactsStore& contacts,
                 PictureCache& pictures, QWidget* parent = nullptr);
    ~TimelineView() override;

    [[nodiscard]] const TesselChatLog& chatlog() const { return layout_.chatlog(); }
    [[nodiscard]] std::shared_ptr<const TesselChatLog> sharedChatlog() const {
        return layout_.sharedChatlog();
    }
    /// In points; any number, brought to the nearest that a font can have.
    void setFontSize(qint64 points);
    [[nodiscard]] qint64 fontSize() const { return fontSize_; }

    [[nodiscard]] TimelineLayout& timeline() { return layout_; }
    /// The row at the viewport's top edge; 0 before the view was shown.
    [[nodiscard]] qsizetype topRow() const;
    /// How many points of the top row are above that edge.
    [[nodiscard]] qreal pointsAbove() const;
    /// Brings a row's top, or a place so many points below it, to the viewport's top edge, as far
    /// as there is enough below it.
    void scrollToRow(qsizetype index, qreal pointsAbove = 0);
    /// Moves by device pixels of what is there.
    void scrollByPixels(qint64 pixels);
    /// Scrolls as little as needed to show part of a row, given in device pixels.
    void reveal(qsizetype row, const QRect& part);
    /// Scrolls as little as needed to show a stretch of a row's text.
    void revealText(const TextRange& range);

    /// Highlights what a search has found, sorted by row and start; `current` is the index of the
    /// match to stand out, -1 for none.
    void setFindMatches(std::vector<TextRange> matches, qsizetype current);

    [[nodiscard]] bool hasSelection() const;
    /// A line for each selected row: its text, or a picture's name.
    [[nodiscard]] QString selectedText() const;
    void selectAll();
    void clearSelection();
    /// Puts the selected text on the clipboard; without a selection nothing happens.
    void copySelection() const;

    /// The row that the keyboard is at; -1 before any was chosen.
    [[nodiscard]] qsizetype currentRow() const;
    /// Brings a row on the screen and the keyboard to it.
    void setCurrentRow(qsizetype row);
    /// Acts on a row as a click or the return key does.
    void activateRow(qsizetype row);

    [[nodiscard]] const RowContext& context() const { return context_; }
    [[nodiscard]] const ContactsStore& contacts() const { return context_.contacts; }
    [[nodiscard]] PictureCache& pictures() const { return context_.pictures; }
    /// Where links lead to.
    [[nodiscard]] Links& links();
    /// A place of the viewport in device pixels.
    [[nodiscard]] QPoint toDevice(QPoint point) const;
    /// True while rows that nobody has seen are still being measured.
    [[nodiscard]] bool isIdlePassRunning() const { return idleTimer_.isActive(); }

    [[nodiscard]] QSize sizeHint() const override;

  Q_SIGNALS:
    void selectionChanged();
    /// The address below the mouse, as one line; empty when there is none any more.
    void linkHovered(const QString& address);
    void currentRowChanged(qsizetype row);

  protected:
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void presentSenders();
    /// Takes fonts, colours and ratio from the widget, and lays everything out anew.
    void rebuild();
    void paintBackground(QPainter& painter, const QRect& exposed);
    void paintRows(QPainter& painter, const QRect& exposed);
    void moved();
    void syncScrollBar();
    void scrollSmoothly(double pixels);
    void restartIdlePass();
    void pictureChanged(const char* bytes);
    /// Starts or stops a GIF.
    void playPicture(qsizetype row);
    void stopUnseenPicture();
    void repaintRow(qsizetype row);
    [[nodiscard]] qreal ratio() const { return context_.ratio; }
    [[nodiscard]] int viewportWidth() const;
    [[nodiscard]] int viewportHeight() const;

    BackgroundCache backgrounds_;
    TextTiles textTiles_;
    RowContext context_;
    TimelineLayout layout_;
    qint64 fontSize_ = 16;
    bool isBuilt_ = false;
    // Of a scrollToRow() before the view was shown.
    qsizetype wantedRow_ = 0;
    qreal wantedPointsAbove_ = 0;

    ScrollMapping mapping_;  // as the scroll bar has it
    bool isSyncing_ = false;
    SmoothScroll smoothScroll_;
    QBasicTimer frameTimer_;
    QElapsedTimer frameClock_;
    QBasicTimer idleTimer_;

    std::unique_ptr<Selecting> selecting_;
    std::unique_ptr<Pointing> pointing_;
    std::unique_ptr<CurrentRow> currentRow_;
    std::unique_ptr<GifPlayer> gifPlayer_;
};

}  // namespace vell
