#pragma once
// SPDX-License-Identifier: MIT
//
// PictureViewer: a chat's pictures, one at a time, over the whole of its window.
//
//     left, right, page keys      the previous and the next picture; home, end: the first, the last
//     plus, minus, 0, wheel,      larger, smaller, fitted; a double click enlarges and fits
//     pinching
//     control with C, with S      copies and saves; escape, or a click beside the picture, closes

#include <QLabel>
#include <QWidget>
#include <optional>
#include <vector>

#include "app/documents/viewer/zoomed_picture.h"
#include "timeline/pictures/gif_player.h"
#include "transcript/chat_log.h"

namespace vell {

class ContactsStore;
class PictureCache;
class ViewerButton;

class PictureViewer final : public QWidget {
    Q_OBJECT

  public:
    /// Covers the window, and shows the picture of the row. All must outlive the viewer, which
    /// deletes itself when it is closed.
    PictureViewer(QWidget& window, std::shared_ptr<const TesselChatLog> log, qsizetype row,
                  PictureCache& pictures, const ContactsStore& contacts);
    ~PictureViewer() override;

    /// The rows of all of the chat's pictures, once they are known.
    void setRows(const std::vector<qsizetype>& rows);
    [[nodiscard]] qsizetype row() const { return row_; }

  Q_SIGNALS:
    void closed();

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    [[nodiscard]] const TesselChatLog::Image& image() const;
    [[nodiscard]] QRectF room() const;
    void show(qsizetype row);
    void step(qsizetype distance);
    void describe();
    void measure();
    void placeChildren();
    void paintPicture(QPainter& painter);
    /// How many pixels to ask for: enough for the size on the screen.
    [[nodiscard]] QSize wantedPixels() const;
    void zoom(qreal factor, std::optional<QPointF> anchor = {});
    void copy();
    void save();
    void finish();

    std::shared_ptr<const TesselChatLog> log_;
    qsizetype row_;
    PictureCache& pictures_;
    const ContactsStore& contacts_;
    std::vector<qsizetype> rows_;
    ZoomedPicture zoomed_;
    GifPlayer gifPlayer_;
    std::optional<QPointF> dragged_;  // where the mouse was last, with the button held
    bool isClick_ = false;            // of the button, so far
    bool wasPressed_ = false;  // ever: the click that has opened the viewer may be a double one

    ViewerButton* previous_;
    ViewerButton* next_;
    ViewerButton* copy_;
    ViewerButton* save_;
    ViewerButton* close_;
    QLabel* name_;
    QLabel* details_;
};

}  // namespace vell
