#pragma once
// SPDX-License-Identifier: MIT
//
// Animation: the frames of a GIF one after the other, from the start again as often as it asks.

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <memory>

#include "foundation/data.h"

namespace vell {

class Animation {
  public:
    struct Frame {
        QImage image;   ///< null at the end
        int delay = 0;  ///< milliseconds
    };

    /// The bytes must stay as long as it.
    Animation(const foundation::Data& gif, QSize size);
    [[nodiscard]] Frame next();

  private:
    void rewind();

    QByteArray bytes_;
    QSize size_;
    std::unique_ptr<QBuffer> buffer_;
    std::unique_ptr<QImageReader> reader_;
    int count_ = 0;
    int round_ = 0;
    int loops_ = 0;
};

}  // namespace vell
