#pragma once
// SPDX-License-Identifier: MIT
//
// TimelineView: the scrolling timeline of one chat log. It paints the rows that are seen, whatever
// the log's length; TimelineLayout knows where they are.
//
//     auto* view = new TimelineView(document.sharedChatlog(), contacts, pictures);
//     view->setFontSize(settings.timelineFontSize());

#include <QAbstractScrollArea>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "timeline/bubbles/background_cache.h"
#include "timeline/input/selection.h"
#include "timeline/layout/timeline_layout.h"
#include "timeline/layout/timeline_scroller.h"
#include "timeline/rows/row_context.h"
#include "timeline/text/found_spans.h"
#include "timeline/text/text_range.h"
#include "timeline/text/text_tiles.h"
#include "transcript/chat_log.h"

namespace vell {

class ContactsStore;
class FloatingDay;
class GifPlayer;
class KeyboardNavigation;
class Links;
class PictureCache;
class RowInteraction;
class RowPainter;
class ScrollBarMarks;
class SelectionController;
struct RowPlace;

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
    /// Shows the same messages with other marks of days and minutes; the place is kept.
    void setChatlog(std::shared_ptr<const TesselChatLog> chatlog);
    /// Where a row of the log that was shown is in the one that replaces it; of a mark, where the
    /// message below it is.
    using RowMap = std::function<qsizetype(qsizetype row)>;
    /// Shows a log with more or fewer messages. The ones on the screen stay where they are; the
    /// selection and the keyboard's row stay, too.
    void replaceChatlog(std::shared_ptr<const TesselChatLog> chatlog, const RowMap& rowOf);
    /// In points; any number, brought to the nearest that a font can have.
    void setFontSize(qint64 points);
    [[nodiscard]] qint64 fontSize() const { return fontSize_; }

    [[nodiscard]] TimelineLayout& timeline() { return layout_; }
    [[nodiscard]] TimelineScroller& scroller() { return scroller_; }

    /// Highlights what a search has found, here and beside the scroll bar; `current` is the index
    /// of the match to stand out, -1 for none. To be called again when there are more.
    void setFindMatches(std::shared_ptr<const FoundSpans> matches, qsizetype current);
    /// Those that were set last; null before.
    [[nodiscard]] const std::shared_ptr<const FoundSpans>& findMatches() const;

    [[nodiscard]] bool hasSelection() const;
    /// A line for each selected row: its text, or a picture's name.
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] const TextSpan& selectedSpan() const;
    /// Where the selection's free end is; nothing before anything was selected.
    [[nodiscard]] const std::optional<TextPosition>& caret() const;
    void select(const TextSpan& span);
    struct Phrase {
        QString text;
        TextSpan span;
    };
    /// The selected text, if it is a short part of one line.
    [[nodiscard]] std::optional<Phrase> selectedPhrase() const;
    void selectAll();
    void clearSelection();
    /// Replaces the text by what a clipboard or a drag is to carry of a selection.
    void setSelectionExporter(SelectionExporter exporter);
    /// Puts what is selected on the clipboard; without a selection nothing happens.
    void copySelection() const;

    /// The first place of a text that is on the screen.
    [[nodiscard]] TextPosition topPosition();
    /// The row that the keyboard is at; -1 before any was chosen.
    [[nodiscard]] qsizetype currentRow() const;
    /// Brings a row on the screen and the keyboard to it.
    void setCurrentRow(qsizetype row);
    /// Acts on a row as a click or the return key does.
    void activateRow(qsizetype row);

    [[nodiscard]] const RowContext& context() const { return context_; }
    /// Where links lead to.
    [[nodiscard]] Links& links();

    [[nodiscard]] QSize sizeHint() const override;

  Q_SIGNALS:
    void selectionChanged();
    /// The address below the mouse, as one line; empty when there is none any more.
    void linkHovered(const QString& address);
    void currentRowChanged(qsizetype row);
    /// A key has led far away from this place.
    void jumped(const vell::TimelinePlace& left);
    /// A row's picture is to be shown large.
    void pictureOpened(qsizetype row);
    /// A session's file is to be shown alone.
    void sessionOpened(const QByteArray& path);
    /// People may be called something else now.
    void namesChanged();
    /// A row's picture turned out not to be drawable; the row says why.
    void pictureFailed(qsizetype row);

  protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    bool dispatch(QEvent& event);
    bool dispatchMouse(const QMouseEvent& event);
    [[nodiscard]] std::optional<RowPlace> placeAt(QPoint point);
    /// Takes fonts, colours and ratio from the widget, and lays everything out anew.
    void rebuild();
    void pictureChanged(const char* bytes);
    /// Starts or stops a GIF.
    void playPicture(qsizetype row);
    void stopUnseenPicture();
    /// Brings to the screen what has changed of the rows.
    void refresh();
    [[nodiscard]] qreal ratio() const { return context_.ratio; }
    [[nodiscard]] int viewportWidth() const;
    [[nodiscard]] int viewportHeight() const;

    BackgroundCache backgrounds_;
    TextTiles textTiles_;
    RowContext context_;
    TimelineLayout layout_;
    TimelineScroller scroller_;
    qint64 fontSize_ = 16;
    bool isBuilt_ = false;

    std::unique_ptr<SelectionController> selection_;
    std::unique_ptr<RowInteraction> rows_;
    std::unique_ptr<KeyboardNavigation> keyboard_;
    std::unique_ptr<GifPlayer> gifPlayer_;
    std::unique_ptr<RowPainter> painter_;
    std::unique_ptr<FloatingDay> day_;
    ScrollBarMarks* marks_;
};

}  // namespace vell
