// SPDX-License-Identifier: MIT
#include "timeline/gif_player.h"

#include <QBuffer>
#include <QImageReader>
#include <QThreadPool>
#include <QTimerEvent>
#include <utility>

#include "identity/mailbox.h"

namespace vell {
namespace {

// Milliseconds. Pictures that ask for no delay or next to none mean the usual one.
constexpr int shortestDelay = 20;
constexpr int usualDelay = 100;

}  // namespace

/// Reads frame after frame, from the start again after the last one. One thread at a time.
class GifPlayer::Reader {
  public:
    Reader(foundation::Picture picture, QSize pixels)
        : picture_(std::move(picture)), pixels_(pixels) {
        rewind();
    }

    Frame next() {
        if (!reader_->canRead()) {
            // As many rounds as the picture asks for; -1 are rounds without end.
            const bool isEnd = count_ < 2 || (loops_ >= 0 && round_ >= loops_);
            if (isEnd) return {};
            ++round_;
            rewind();
        }
        QImage image = reader_->read();
        if (image.isNull()) return {};
        if (round_ == 0) {
            ++count_;
            loops_ = reader_->loopCount();
        }
        const int delay = reader_->nextImageDelay();
        if (image.width() > pixels_.width() || image.height() > pixels_.height())
            image = image.scaled(pixels_, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return {std::move(image).convertToFormat(QImage::Format_ARGB32_Premultiplied),
                delay < shortestDelay ? usualDelay : delay};
    }

  private:
    void rewind() {
        reader_.reset();
        buffer_ = std::make_unique<QBuffer>();
        buffer_->setData(QByteArray::fromRawData(picture_.data.begin(), picture_.data.size()));
        buffer_->open(QIODevice::ReadOnly);
        reader_ = std::make_unique<QImageReader>(buffer_.get(), "gif");
    }

    foundation::Picture picture_;
    QSize pixels_;
    std::unique_ptr<QBuffer> buffer_;
    std::unique_ptr<QImageReader> reader_;
    int count_ = 0;
    int round_ = 0;
    int loops_ = 0;
};

GifPlayer::GifPlayer(QObject* parent)
    : QObject(parent), mailbox_(std::make_shared<Mailbox>(this)) {}

GifPlayer::~GifPlayer() {
    mailbox_->close();
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
    QThreadPool::globalInstance()->start([this, reader = reader_, mailbox = mailbox_] {
        Frame frame = reader->next();
        mailbox->post(
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
