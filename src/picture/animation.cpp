// SPDX-License-Identifier: MIT
#include "picture/animation.h"

#include <algorithm>

#include "picture/decoding.h"

namespace vell {
namespace {

// Milliseconds. Pictures that ask for no delay or next to none mean the usual one.
constexpr int shortestDelay = 20;
constexpr int usualDelay = 100;

}  // namespace

Animation::Animation(const foundation::Data& gif, QSize size)
    : bytes_(QByteArray::fromRawData(gif.begin(), gif.size())), size_(size) {
    rewind();
}

Animation::Frame Animation::next() {
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
    if (image.width() > size_.width() || image.height() > size_.height())
        image = image.scaled(size_, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return {readyToPaint(std::move(image)), delay < shortestDelay ? usualDelay : delay};
}

void Animation::rewind() {
    reader_.reset();
    buffer_ = std::make_unique<QBuffer>(&bytes_);
    buffer_->open(QIODevice::ReadOnly);
    reader_ = std::make_unique<QImageReader>(buffer_.get(), "gif");
    reader_->setAutoDetectImageFormat(false);
}

}  // namespace vell
