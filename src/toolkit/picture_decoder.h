#pragma once
// SPDX-License-Identifier: MIT
//
// Makes pixels of pictures: upright, the first one of those that hold several, and not larger than
// they are needed. Processes of their own do it (toolkit/picture_process.h), started when the first
// picture is asked for, replaced when they break off and ended when they have had nothing to do.
// Any thread, several at a time, but not the window's, as all wait for their picture. One that
// can't be drawn comes back with the reason in words, never as an exception.
//
//     const DecodedPicture decoded = decodePicture(picture, bubble.size() * ratio);

#include <QElapsedTimer>
#include <QMultiHash>
#include <QSize>
#include <QString>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

#include "foundation/picture.h"
#include "toolkit/drawn_picture.h"

namespace vell {

class PictureProcess;

struct DecodedPicture {
    DrawnPicture picture;
    /// Why there is none, for people; empty when there is one.
    QString problem;

    explicit operator bool() const { return problem.isEmpty(); }
};

class PictureDecoder {
  public:
    /// The program that the processes run.
    explicit PictureDecoder(QString program);
    ~PictureDecoder();
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

    /// At the size in pixels that it is wanted in, or at its own when that is smaller; drawings
    /// are enlarged. A picture that crashed a process is never tried again.
    [[nodiscard]] DecodedPicture decode(const foundation::Picture& picture, QSize wanted,
                                        Qt::AspectRatioMode mode = Qt::KeepAspectRatio);
    /// Ends processes that have been idle for some time; returns whether none is left.
    bool endIdle();

  private:
    struct GivenUp {
        QByteArray digest;
        QString problem;
    };

    [[nodiscard]] std::unique_ptr<PictureProcess> take();
    void giveBack(std::unique_ptr<PictureProcess> process);
    [[nodiscard]] QString knownProblem(const foundation::Data& picture);
    void giveUp(const foundation::Data& picture, const QString& problem);

    const QString program_;
    std::mutex mutex_;
    std::condition_variable isFree_;
    std::vector<std::unique_ptr<PictureProcess>> idle_;
    int busy_ = 0;
    QElapsedTimer sinceUse_;
    QElapsedTimer sinceFailedStart_;          // invalid before any has failed
    QMultiHash<qsizetype, GivenUp> givenUp_;  ///< by length in bytes
};

/// By the processes that the whole program shares.
[[nodiscard]] DecodedPicture decodePicture(const foundation::Picture& picture, QSize wanted,
                                           Qt::AspectRatioMode mode = Qt::KeepAspectRatio);

}  // namespace vell
