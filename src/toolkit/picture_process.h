#pragma once
// SPDX-License-Identifier: MIT
//
// PictureProcess: one running vell-picture, which makes pixels of bytes that may be malicious and
// can reach nothing while it does. Its replies are trusted no more than the bytes. One thread
// at a time, and never the window's, as every request blocks until its reply.
//
//     const auto process = PictureProcess::start(PictureProcess::program());
//     const auto answer = process->still(picture.data, size, Qt::KeepAspectRatio);

#include <sys/types.h>

#include <QImage>
#include <QSize>
#include <QString>
#include <memory>
#include <optional>

#include "foundation/data.h"
#include "toolkit/picture_messages.h"

namespace vell {

class PictureProcess {
  public:
    struct Answer {
        QImage image;  ///< null where there is none
        int delay = 0;
        QString problem;
    };
    enum class End {
        none,     ///< it runs
        between,  ///< it had ended before the request: not this picture's fault
        during,   ///< it crashed on the picture
        late,     ///< it took too long over the picture
    };

    /// Where the program lies: beside the one that runs.
    [[nodiscard]] static QString program();
    /// Waits until it is ready; nothing when it can't be started.
    [[nodiscard]] static std::unique_ptr<PictureProcess> start(const QString& program);

    ~PictureProcess();
    PictureProcess(const PictureProcess&) = delete;
    PictureProcess& operator=(const PictureProcess&) = delete;

    /// The picture at most in the size wanted; nothing when the process has ended instead.
    [[nodiscard]] std::optional<Answer> still(const foundation::Data& picture, QSize wanted,
                                              Qt::AspectRatioMode mode);
    /// Frame after frame of one animation, without picture or problem behind the last one.
    [[nodiscard]] std::optional<Answer> firstFrame(const foundation::Data& picture, QSize wanted);
    [[nodiscard]] std::optional<Answer> nextFrame();

    /// Unblocks a thread that waits for a reply; the process ends. Any thread.
    void interrupt();

    [[nodiscard]] End end() const { return end_; }

  private:
    PictureProcess() = default;
    [[nodiscard]] bool share(const foundation::Data& picture, QSize wanted);
    [[nodiscard]] std::optional<Answer> ask();
    [[nodiscard]] bool receive(void* message, size_t size);
    [[nodiscard]] std::optional<Answer> read(const picture_messages::Reply& reply);
    void finish(End end);

    int socket_ = -1;
    int memory_ = -1;
    pid_t process_ = -1;
    End end_ = End::none;
    picture_messages::Request request_;
};

}  // namespace vell
