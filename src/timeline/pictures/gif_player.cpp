// SPDX-License-Identifier: MIT
#include "timeline/pictures/gif_player.h"

#include <QThreadPool>
#include <QTimerEvent>
#include <mutex>
#include <optional>
#include <utility>

#include "toolkit/callback_guard.h"
#include "toolkit/picture_process.h"

namespace vell {

/// Asks a process of its own for frame after frame. One thread at a time.
class GifPlayer::Reader {
  public:
    Reader(foundation::Picture picture, QSize pixels)
        : picture_(std::move(picture)), pixels_(pixels) {}

    Frame next() {
        std::optional<PictureProcess::Answer> answer;
        if (process_) {
            answer = process_->nextFrame();
        } else if (start()) {
            if (const auto data = picture_.data.load())
                answer = process_->firstFrame(*data, pixels_);
        }
        if (!answer) return {};
        return {std::move(answer->image), answer->delay};
    }

    /// No frame is needed any more. Any thread.
    void cancel() {
        const std::lock_guard lock(mutex_);
        isCancelled_ = true;
        if (process_) process_->interrupt();
    }

  private:
    bool start() {
        auto process = PictureProcess::start(PictureProcess::program());
        const std::lock_guard lock(mutex_);
        if (!isCancelled_) process_ = std::move(process);
        return process_ != nullptr;
    }

    foundation::Picture picture_;
    QSize pixels_;
    std::mutex mutex_;
    bool isCancelled_ = false;
    std::unique_ptr<PictureProcess> process_;
};

GifPlayer::GifPlayer(QObject* parent)
    : QObject(parent), callbacks_(std::make_shared<CallbackGuard>(this)) {}

GifPlayer::~GifPlayer() {
    if (reader_) reader_->cancel();
    callbacks_->close();
}

void GifPlayer::toggle(qsizetype row, const foundation::Picture& picture, QSize pixels) {
    const bool isStop = row == row_;
    stop();
    if (isStop || picture.format != foundation::PictureFormat::gif || pixels.isEmpty()) return;
    const QSize size = picture.pixelSize.value_or(QSize());
    if (size.isEmpty() || qint64(size.width()) * size.height() > mostPixels) return;
    row_ = row;
    reader_ = std::make_shared<Reader>(picture, pixels);
    isDue_ = true;
    decodeNext();
}

void GifPlayer::stop() {
    if (row_ < 0) return;
    const qsizetype row = std::exchange(row_, -1);
    timer_.stop();
    reader_->cancel();
    reader_.reset();
    shown_ = {};
    next_ = {};
    isNextReady_ = isDue_ = false;
    Q_EMIT changed(row);
}

const QImage* GifPlayer::frame(qsizetype row) const {
    return row == row_ && !shown_.isNull() ? &shown_ : nullptr;
}

void GifPlayer::decodeNext() {
    QThreadPool::globalInstance()->start([this, reader = reader_, callbacks = callbacks_] {
        Frame frame = reader->next();
        callbacks->post(
            [this, reader, frame = std::move(frame)]() mutable { take(reader, std::move(frame)); });
    });
}

void GifPlayer::take(const std::shared_ptr<Reader>& from, Frame frame) {
    if (from != reader_) return;  // of a picture that doesn't play any more
    if (isDue_) {
        show(std::move(frame));
    } else {
        next_ = std::move(frame);
        isNextReady_ = true;
    }
}

void GifPlayer::show(Frame frame) {
    if (frame.image.isNull()) {
        stop();
        return;
    }
    shown_ = std::move(frame.image);
    isDue_ = false;
    timer_.start(frame.delay, this);
    decodeNext();
    Q_EMIT changed(row_);
}

void GifPlayer::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) return;
    timer_.stop();
    isDue_ = true;
    if (std::exchange(isNextReady_, false)) show(std::exchange(next_, {}));
}

}  // namespace vell
