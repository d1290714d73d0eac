#pragma once
// SPDX-License-Identifier: MIT
//
// GifPlayer: plays one animated GIF of a timeline, at the size it is shown in. A process of its own
// decodes frames, one ahead of the one that is seen. GUI thread only.
//
//     player.toggle(row, picture, room.size());
//     if (const QImage* frame = player.frame(row)) painter.drawImage(room, *frame);

#include <QBasicTimer>
#include <QImage>
#include <QObject>
#include <memory>

#include "foundation/picture.h"

namespace vell {

class CallbackGuard;

class GifPlayer final : public QObject {
    Q_OBJECT

  public:
    /// Larger ones stay what they are while they don't move: each frame is drawn whole.
    static constexpr qint64 mostPixels = 16'000'000;

    explicit GifPlayer(QObject* parent = nullptr);
    ~GifPlayer() override;

    /// Plays a row's picture from its start, in place of any other; a second time, it stops. What
    /// has one frame only, or isn't a GIF, doesn't begin.
    void toggle(qsizetype row, const foundation::Picture& picture, QSize pixels);
    void stop();
    /// -1 while nothing plays.
    [[nodiscard]] qsizetype row() const { return row_; }
    /// What a row shows in place of its first frame; null where it doesn't play.
    [[nodiscard]] const QImage* frame(qsizetype row) const;

  Q_SIGNALS:
    /// A row shows another frame now.
    void changed(qsizetype row);

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    class Reader;
    struct Frame {
        QImage image;  ///< null at the end
        int delay = 0;
    };

    void decodeNext();
    void take(const std::shared_ptr<Reader>& from, Frame frame);
    void show(Frame frame);

    qsizetype row_ = -1;
    std::shared_ptr<Reader> reader_;
    QImage shown_;
    Frame next_;
    bool isNextReady_ = false;
    bool isDue_ = false;
    QBasicTimer timer_;
    std::shared_ptr<CallbackGuard> callbacks_;
};

}  // namespace vell
